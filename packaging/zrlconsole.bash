# Completion of zrlconsole for bash. Commands, options and what these take come from the program's own help.

_zrlconsole_files() {
  local IFS=$'\n'
  compopt -o filenames
  COMPREPLY+=($(compgen "$@" -- "$current"))
}

_zrlconsole_words() {
  COMPREPLY+=($(compgen -W "$1" -- "$current"))
}

# Reads the help of the command in `path`: its options and commands, how many words each option takes, and what
# these are.
_zrlconsole_learn() {
  local line section='' name rest
  local option='^ +(-[a-z], *)?(--[a-z-]+)(.*)' value='^ ([A-Z]+)(:\{([^}]*)\}|:[^ ]*)?( .*)?$' several='^[A-Z ]* x ([0-9]+) '
  options='' commands=''
  while IFS= read -r line; do
    if [[ $line =~ ^[A-Za-z\ ]+:$ ]]; then
      section=${line,,}
    elif [[ $line =~ $option ]]; then
      name=${BASH_REMATCH[2]} rest=${BASH_REMATCH[3]}
      options+=" $name"
      [[ $rest =~ $value ]] || continue
      kinds[$name]=${BASH_REMATCH[1]}
      choices[$name]=${BASH_REMATCH[3]//,/ }
      taken[$name]=1
      [[ ! ${BASH_REMATCH[4]} =~ $several ]] || taken[$name]=${BASH_REMATCH[1]}
    elif [[ $section == subcommands: && $line =~ ^\ +([a-z]+)(\ |$) ]]; then
      commands+=" ${BASH_REMATCH[1]}"
    fi
  done < <("$program" "${path[@]}" --help 2>/dev/null)
}

_zrlconsole() {
  local current=${COMP_WORDS[COMP_CWORD]} program=${COMP_WORDS[0]} word='' value_of='' operands=0 i
  local path=() folder=() options commands
  local -A taken kinds choices
  COMPREPLY=()

  # The command, and how many of its operands stand before the cursor.
  _zrlconsole_learn
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == -* ]]; then
      [[ $word != --folder ]] || folder=(--folder "${COMP_WORDS[i + 1]}")
      ((i += ${taken[$word]:-0}))
      ((i < COMP_CWORD)) || value_of=$word
    elif [[ " $commands " == *" $word "* ]]; then
      path+=("$word")
      operands=0
      _zrlconsole_learn
    else
      ((++operands))
    fi
  done

  if [[ $value_of ]]; then
    case ${kinds[$value_of]} in
      DIR) _zrlconsole_files -d ;;
      PEM) _zrlconsole_files -f ;;
      *) _zrlconsole_words "${choices[$value_of]}" ;;
    esac
    return
  fi
  [[ $current != -* && ${path[*]} ]] || _zrlconsole_words "$options"
  [[ $current != -* ]] || return
  ((operands > 0)) || _zrlconsole_words "$commands"
  case ${path[*]}:$operands in
    do:0) _zrlconsole_words "$("$program" "${folder[@]}" pages 2>/dev/null | cut -f 1)" ;;
    script:*) _zrlconsole_files -f ;;
    list\ *:0) _zrlconsole_words "$("$program" "${folder[@]}" list 2>/dev/null | cut -d ' ' -f 1)" ;;
    list\ import:1 | list\ export:1) _zrlconsole_files -f ;;
    registry\ set:1) _zrlconsole_words 'REG_SZ REG_DWORD' ;;
  esac
}

complete -F _zrlconsole zrlconsole
