# Completion of orvctl for bash.
declare -gA _orvctl_words _orvctl_values
@TABLES@
_orvctl_offer() {
  local candidate
  for candidate in "$@"; do
    [[ $candidate != "$word"* ]] || COMPREPLY+=("$candidate")
  done
}

_orvctl() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} place=orvctl i
  local -a lines
  for ((i = 1; i < COMP_CWORD; ++i)); do
    [[ ! ${_orvctl_words["$place ${COMP_WORDS[i]}"]-} ]] || place+=" ${COMP_WORDS[i]}"
  done
  # The shell takes --name=value for three words.
  if [[ $word = '=' ]]; then
    word=''
  elif [[ $before = '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  COMPREPLY=()
  case ${_orvctl_values["$place $before"]-} in
    '')
      mapfile -t lines <<<"${_orvctl_words[$place]%$'\n'}"
      _orvctl_offer "${lines[@]%%:*}"
      ;;
    one\ of\ *)
      read -ra lines <<<"${_orvctl_values["$place $before"]#one of }"
      _orvctl_offer "${lines[@]}"
      ;;
    directory) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
    file) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
  esac
}
complete -o filenames -F _orvctl orvctl
