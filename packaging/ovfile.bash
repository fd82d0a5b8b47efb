# Completion of the command ovfile: commands, the options that a command's own help lists, and files.
_ovfile() {
  local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]-}
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    local commands
    commands=$(ovfile --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\).*/\1/p')
    mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$word")
  elif [ "${word:0:1}" = - ]; then
    local options
    options=$(ovfile "$command" --help 2>/dev/null | grep -oE -- '--?[a-z][a-z-]*' | sort -u)
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
  else
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -F _ovfile ovfile
