# completion.zsh DIRECTORY TEXT: prints the line that an interactive zsh has after TEXT and Tab, with
# the completions of DIRECTORY.
zmodload zsh/zpty
zpty shell zsh -f -i
zpty -w shell "PS1=; fpath=(${(q)1} \$fpath); autoload -U compinit; compinit -u -d ./zcompdump; bindkey '^I' complete-word
show() { print -r -- \"[[\$BUFFER]]\"; BUFFER= }; zle -N show; bindkey '^G' show; print -r -- rea''dy"
zpty -r shell output '*ready*'
zpty -w -n shell "$2"$'\t\a'
zpty -r shell output '*]]*'
output=${output##*\[\[}
print -r -- "${output%%\]\]*}"
zpty -d shell
