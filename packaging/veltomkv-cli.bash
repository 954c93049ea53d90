# bash completion for veltomkv-cli                                 -*- shell-script -*-

_veltomkv_cli() {
    local cur prev words cword split
    _init_completion -s || return

    case $prev in
        --provider | --engine | --set-key)
            COMPREPLY=($(compgen -W 'anthropic openai gemini meta local custom claudeCLI echo' \
                -- "$cur"))
            return
            ;;
        --variant)
            COMPREPLY=($(compgen -W 'neutro rioplatense latino espana' -- "$cur"))
            return
            ;;
        --effort)
            COMPREPLY=($(compgen -W 'low medium high xhigh max' -- "$cur"))
            return
            ;;
        --cli-model)
            COMPREPLY=($(compgen -W 'opus sonnet haiku' -- "$cur"))
            return
            ;;
        --output | --claude-path)
            _filedir
            return
            ;;
        --model | --base-url | --title | --source-language | --track | --batch-size | \
            --concurrency | --context-lines)
            return
            ;;
    esac
    $split && return

    if [[ $cur == -* ]]; then
        # The options come from the program's own help, so they are always the installed ones.
        COMPREPLY=($(compgen -W '$(_parse_help "$1")' -- "$cur"))
        return
    fi
    _filedir '@(mkv|MKV|mp4|MP4|mov|MOV|m4v|M4V|webm|WEBM|avi|AVI)'
} &&
    complete -F _veltomkv_cli veltomkv-cli

# ex: filetype=sh
