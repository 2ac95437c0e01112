# What the shells offer behind orvctl, with the scripts as installed.
prefix=$work/prefix
install_tree "$prefix"

# bash_offers WORD...: the last one is being completed.
bash_offers() {
  bash -c 'source "$1"
    COMP_WORDS=("${@:2}") COMP_CWORD=$(($# - 2))
    "$(complete -p orvctl | sed "s/.*-F \([^ ]*\).*/\1/")"
    echo "${COMPREPLY[*]}"' bash "$prefix/share/bash-completion/completions/orvctl" "$@"
}

subcommands=$("$prefix/bin/orvctl" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\S*\).*/\1/p')
[[ $subcommands == *send* ]] || fail "no subcommands in: $subcommands"
expect 'all subcommands' "--timeout --store -c --camera ${subcommands//$'\n'/ }" \
  "$(bash_offers orvctl '' | sed 's/^-h --help --version //')"
expect 'options of a subcommand and of the tool' '--help --data --timeout --store --camera' \
  "$(bash_offers orvctl send --)"
expect 'choices' 'agent_start agent_stop' "$(bash_offers orvctl --timeout 2 send agent_)"
expect 'keys' 'KEY_MODE_SCENE KEY_MODE_SMART KEY_MODE_S' "$(bash_offers orvctl key press KEY_MODE_S)"
expect 'no guess for a number' '' "$(bash_offers orvctl --timeout '')"
mkdir -p stores/one 'stores/the second'
expect 'directories' 'stores/one stores/the second' "$(bash_offers orvctl send --store stores/)"
expect 'directories behind =' 'stores/one' "$(bash_offers orvctl --store = stores/o)"

if ! type -P zsh >/dev/null; then
  echo 'skipped: completion in zsh, which is not installed'
  exit 77
fi
# zsh_line TEXT: the line that zsh has after Tab behind TEXT.
zsh_line() {
  zsh -f "$here/completion.zsh" "$prefix/share/zsh/vendor-completions" "$1"
}
expect 'zsh: a subcommand' 'orvctl send ' "$(zsh_line 'orvctl sen')"
expect 'zsh: an option of the tool' 'orvctl send --store ' "$(zsh_line 'orvctl send --st')"
expect 'zsh: a choice' 'orvctl send target_info ' "$(zsh_line 'orvctl send target_')"
expect 'zsh: a directory' 'orvctl --store=stores/one/' "$(zsh_line 'orvctl --store=stores/o')"
expect 'zsh: no guess for a number' 'orvctl --timeout ' "$(zsh_line 'orvctl --timeout ')"
