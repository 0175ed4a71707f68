# Completion of korvane-cli for bash. Source it, or install it as korvane-cli in the folder of completions.

_korvane_cli() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="reel transcribe export languages help"
    local global="--quiet --help --version"
    local command="" i
    COMPREPLY=()

    # With "=" among the word breaks, "--language=en" arrives as three words.
    if [[ $current == "=" ]]; then
        current=""
    elif [[ $previous == "=" ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ " $commands " == *" ${COMP_WORDS[i]} "* ]]; then
            command=${COMP_WORDS[i]}
            break
        fi
    done

    case $previous in
    -l | --language)
        mapfile -t COMPREPLY < <(compgen -W "ru-RU en-US uk-UA fr-FR de-DE es-ES it-IT zh-CN ja-JP" -- "$current")
        return
        ;;
    -f | --format)
        mapfile -t COMPREPLY < <(compgen -W "text json srt vtt" -- "$current")
        return
        ;;
    -s | --select | -d | --drop) return ;;
    -w | --words | --style)
        mapfile -t COMPREPLY < <(compgen -f -X '!*.json' -- "$current"; compgen -d -- "$current")
        return
        ;;
    -o | --output)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    esac

    local words=""
    case $command in
    "") words="$commands $global" ;;
    reel) words="--language --output --select --drop --style $global" ;;
    transcribe) words="--language --output --format $global" ;;
    export) words="--words --output --select --drop --style $global" ;;
    languages) words=$global ;;
    help) words="reel transcribe export languages" ;;
    esac
    if [[ -n $command && $command != help && $command != languages && $current != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -o filenames -F _korvane_cli korvane-cli
