# Completes the options of quorva-scan.
_quorva_scan() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $word == = ]] && word= && previous=${COMP_WORDS[COMP_CWORD - 1]}
    if [[ $previous == --source ]]; then
        mapfile -t COMPREPLY < <(compgen -W "process calendar meeting" -- "$word")
    else
        local options="--source --json --watch --self-test --version --help"
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    fi
}
complete -F _quorva_scan quorva-scan
