# Completion of zrlconsole for bash.

_zrlconsole_files() {
  local IFS=$'\n'
  compopt -o filenames
  COMPREPLY+=($(compgen "$@" -- "$current"))
}

_zrlconsole_words() {
  COMPREPLY+=($(compgen -W "$1" -- "$current"))
}

_zrlconsole() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local program=${COMP_WORDS[0]} command='' operands=0 folder=() i
  COMPREPLY=()

  # The command, and how many of its operands stand before the cursor.
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
      --folder) folder=(--folder "${COMP_WORDS[++i]}") ;;
      --listen | --certificate | --key | --host | --filter | --limit | --comment | --expires | --period) ((++i)) ;;
      --call) ((i += 2)) ;;
      -*) ;;
      *) if [[ $command ]]; then ((++operands)); else command=${COMP_WORDS[i]}; fi ;;
    esac
  done

  case $previous in
    --folder) _zrlconsole_files -d; return ;;
    --certificate | --key) _zrlconsole_files -f; return ;;
    --period) _zrlconsole_words 'day week month'; return ;;
    --listen | --host | --call | --filter | --limit | --comment | --expires) return ;;
  esac

  if [[ ! $command ]]; then
    _zrlconsole_words '--folder --help --version init serve pages do overview messages list lookup registry script'
    return
  fi
  if [[ $current == -* ]]; then
    case $command in
      init) _zrlconsole_words '--sample --help' ;;
      serve) _zrlconsole_words '--listen --certificate --key --host --require-audit --allow-root --tabs --help' ;;
      pages) _zrlconsole_words '--json --help' ;;
      do) _zrlconsole_words '--json --start-programs --query --help' ;;
      overview) _zrlconsole_words '--period --json --help' ;;
      messages) _zrlconsole_words '--since --filter --limit --json --csv --help' ;;
      list) _zrlconsole_words '--json --filter --limit --comment --expires --overwrite --help' ;;
      lookup) _zrlconsole_words '--dns --json --help' ;;
      script) _zrlconsole_words '--check --call --help' ;;
      registry) _zrlconsole_words '--help' ;;
    esac
    return
  fi
  case $command in
    do) ((operands > 0)) || _zrlconsole_words "$("$program" "${folder[@]}" pages 2>/dev/null | cut -f 1)" ;;
    script) _zrlconsole_files -f ;;
    list)
      case $operands in
        0) _zrlconsole_words 'show add remove import export' ;;
        1) _zrlconsole_words "$("$program" "${folder[@]}" list 2>/dev/null | cut -d ' ' -f 1)" ;;
        2) [[ " ${COMP_WORDS[*]} " != *' '@(import|export)' '* ]] || _zrlconsole_files -f ;;
      esac
      ;;
    registry)
      case $operands in
        0) _zrlconsole_words 'get set delete' ;;
        2) [[ " ${COMP_WORDS[*]} " != *' set '* ]] || _zrlconsole_words 'REG_SZ REG_DWORD' ;;
      esac
      ;;
  esac
}

complete -F _zrlconsole zrlconsole
