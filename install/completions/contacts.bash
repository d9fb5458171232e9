# Completion of contacts for bash: subcommands, options, and the names of people, groups and properties.
_contacts() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local command=${COMP_WORDS[1]} group=${COMP_WORDS[2]}
  local commands="add classes edit export find groups import list me photo pick properties remove run show watch"
  COMPREPLY=()

  case $previous in
    --folder) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
    --output | -o | --get | --set) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --property)
      mapfile -t COMPREPLY < <(compgen -W "$(contacts properties 2>/dev/null | sed '1d; s/ .*//')" -- "$current")
      return
      ;;
    --type)
      local types="string integer real date array dictionary data multi-string multi-date multi-dictionary"
      mapfile -t COMPREPLY < <(compgen -W "$types" -- "$current")
      return
      ;;
  esac
  if [[ $COMP_CWORD -eq 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$commands --folder --help --json --quiet" -- "$current")
    return
  fi
  if [[ $current == -* ]]; then
    local options="--help --json --quiet --folder"
    case $command in
      add | edit | remove | import | me | groups) options+=" --dry-run" ;;&
      me) options+=" --clear" ;;
      find) options+=" --property --label --key --comparison" ;;
      export) options+=" --output" ;;
      photo) options+=" --dry-run --get --set --remove" ;;
      pick) options+=" --property --multiple --groups" ;;
      properties) options+=" --dry-run --add --type --remove --groups" ;;
      groups) [[ $group == create ]] && options+=" --in"; [[ $group == nest ]] && options+=" --out" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    return
  fi
  case $command in
    import | run) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    groups)
      if [[ $COMP_CWORD -eq 2 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "add create drop members nest remove rename" -- "$current")
      fi
      ;;
    show | edit | remove | photo | me)
      local IFS=$'\n'
      mapfile -t COMPREPLY < <(compgen -W "$(contacts list 2>/dev/null)" -- "$current" | sed 's/ /\\ /g')
      ;;
    classes) mapfile -t COMPREPLY < <(compgen -W "$(contacts classes 2>/dev/null)" -- "$current") ;;
  esac
}
complete -F _contacts contacts
