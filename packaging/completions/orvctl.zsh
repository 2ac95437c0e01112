#compdef orvctl
# Completion of orvctl for zsh.
typeset -gA _orvctl_words _orvctl_values
@TABLES@
_orvctl() {
  local before=${words[CURRENT - 1]} place=orvctl value i
  local -a lines options others
  for ((i = 2; i < CURRENT; ++i)); do
    [[ -z ${_orvctl_words[$place ${words[i]}]-} ]] || place+=" ${words[i]}"
  done
  if [[ $PREFIX = --*=* ]]; then
    before=${PREFIX%%=*}
    compset -P '*='
  fi
  value=${_orvctl_values[$place $before]-}
  case $value in
    '')
      lines=(${(f)_orvctl_words[$place]})
      options=(${(M)lines:#-*})
      others=(${lines:#-*})
      _describe -o option options
      _describe argument others
      ;;
    one\ of\ *)
      lines=(${=value#one of })
      compadd -a lines
      ;;
    directory) _files -/ ;;
    file) _files ;;
    any) _message "value of $before" ;;
  esac
}
_orvctl "$@"
