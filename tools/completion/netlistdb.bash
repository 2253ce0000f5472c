# Completion of netlistdb for bash. Commands, options and the values of options are those that the program's own help
# tells, so that they always fit the program that is called.

# _netlistdb_commands PROGRAM
_netlistdb_commands() {
    "$1" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/ s/^  \([a-z][a-z-]*\) .*/\1/p'
}

# _netlistdb_options PROGRAM COMMAND: each option, a tab, and what it takes, if anything.
_netlistdb_options() {
    "$1" "$2" --help 2>/dev/null | sed -n 's/ Excludes:.*//; s/^  \(-[^ ]*\) \{0,1\}\([^ ]*\).*/\1 \2/p' | while read -r names value; do
        local name
        for name in ${names//,/ }; do
            printf '%s\t%s\n' "$name" "$value"
        done
    done
}

# _netlistdb_actions PROGRAM COMMAND: what the command can do, of a command that can do several things.
_netlistdb_actions() {
    "$1" "$2" --help 2>/dev/null | sed -n 's/^  \([a-z]*\) PLAN .*/\1/p'
}

_netlistdb_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_netlistdb() {
    local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]} word=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_netlistdb_commands "$program") help --help --version" -- "$word")
        return
    fi
    if [ "$command" = help ]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_netlistdb_commands "$program")" -- "$word")
        return
    fi
    if [ "$command" = plan ] && [ "$COMP_CWORD" -eq 2 ] && [[ $word != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_netlistdb_actions "$program" plan)" -- "$word")
        return
    fi
    local options value
    options=$(_netlistdb_options "$program" "$command")
    # `--option=value` comes as three words.
    if [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    elif [ "$word" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 1]} word=
    fi
    value=$(awk -F '\t' -v name="$previous" '$1 == name { print $2; exit }' <<<"$options")
    case $value in
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${value//|/ }" -- "$word") ;;
    *,*) mapfile -t COMPREPLY < <(compgen -W "${value//,/ }" -- "$word") ;;
    FILE | LIST) _netlistdb_files "$word" ;;
    DIR)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        ;;
    ?*) ;; # a name or number that only the user knows
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(cut -f 1 <<<"$options")" -- "$word")
        else
            _netlistdb_files "$word"
        fi
        ;;
    esac
}

complete -F _netlistdb netlistdb
