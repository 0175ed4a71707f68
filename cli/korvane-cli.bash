# Completion of korvane-cli for bash. Source it, or install it as korvane-cli in the folder of completions.

# The ids of the models whose line in the list matches.
_korvane_cli_models() {
    "${COMP_WORDS[0]}" models list 2>/dev/null | awk -v state="$1" '!/^not usable/ && $0 ~ state { print $1 }'
}

_korvane_cli() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local commands="reel transcribe export languages models help"
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
    -s | --select | -d | --drop | --proxy) return ;;
    --engine)
        mapfile -t COMPREPLY < <(compgen -W "whisper pocketsphinx" -- "$current")
        return
        ;;
    --model)
        mapfile -t COMPREPLY < <(compgen -W "$(_korvane_cli_models installed)" -- "$current"; compgen -f -- "$current")
        return
        ;;
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
    reel) words="--language --output --select --drop --style --engine --model $global" ;;
    transcribe) words="--language --output --format --engine --model $global" ;;
    export) words="--words --output --select --drop --style $global" ;;
    languages) words=$global ;;
    models)
        case $previous in
        models) words="list install remove add use path $global" ;;
        install) words=$(_korvane_cli_models .) ;;
        remove) words=$(_korvane_cli_models 'installed|downloaded') ;;
        use) words=$(_korvane_cli_models installed) ;;
        add)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        *) words="--proxy $global" ;;
        esac
        ;;
    help) words="reel transcribe export languages models" ;;
    esac
    if [[ -n $command && $command != help && $command != languages && $command != models && $current != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -o filenames -F _korvane_cli korvane-cli
