# bash completion for zmconfigfile: its two switches, then files.
_zmconfigfile() {
  local cur=${COMP_WORDS[COMP_CWORD]}
  local IFS=$'\n'
  if [[ $cur == -* && $COMP_CWORD -eq 1 ]]; then
    COMPREPLY=($(compgen -W $'--help\n--version' -- "$cur"))
  else
    compopt -o filenames 2>/dev/null
    COMPREPLY=($(compgen -f -- "$cur"))
  fi
}
complete -F _zmconfigfile zmconfigfile
