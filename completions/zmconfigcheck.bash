# bash completion for zmconfigcheck: its options with their values, then files.
_zmconfigcheck() {
  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local IFS=$'\n'
  local options=$'--explain\n--diff\n--graph\n--json\n--sarif\n--ignore\n--only\n--strict\n--lowercase\n--limit\n--color\n--rules\n--help\n--version'
  [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD - 2]}
  case $before in
    --ignore | --only)
      COMPREPLY=($(compgen -W "$(zmconfigcheck --rules | sed -n 's/^\([a-z][a-z-]*\) (.*/\1/p')" -- "$cur"))
      ;;
    --color) COMPREPLY=($(compgen -W $'auto\nalways\nnever' -- "$cur")) ;;
    --explain | --diff | --limit) COMPREPLY=() ;;
    *)
      if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
      else
        compopt -o filenames 2>/dev/null
        COMPREPLY=($(compgen -f -- "$cur"))
      fi
      ;;
  esac
}
complete -F _zmconfigcheck zmconfigcheck
