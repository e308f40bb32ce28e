# Completion of footprint(1) for bash. Where it has no answer, bash completes the names of files.

_footprint()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' index options values=''
    COMPREPLY=()
    # "--option=value" comes as three words.
    if [[ $current == '=' ]]; then
        current=''
    elif [[ $previous == '=' ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ${COMP_WORDS[index]} != -* ]]; then
            command=${COMP_WORDS[index]}
            break
        fi
    done

    case $command in
        '')
            options='-h --help --version'
            values='show verify diff history link report export'
            ;;
        show | diff | history | link) options='-h --help --json --redact' ;;
        verify) options='-h --help --json -q --quiet' ;;
        report) options='-h --help -o --output --board-tree --redact' ;;
        export) options='-h --help -f --format -o --output -j --jobs --timeout --verify --redact' ;;
        *) return ;;
    esac
    case $command:$previous in
        export:-f | export:--format) values='sqlite ndjson csv' ;;
        *) [[ $current != -* ]] || values=$options ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
}

complete -o default -F _footprint footprint
