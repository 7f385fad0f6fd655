# Completion of vantle in bash: what may follow is vantle's own answer.
_vantle() {
    local begun=${COMP_WORDS[COMP_CWORD]} word words=()
    # As the shell would pass them, were the line complete.
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        word=${word#[\"\']}
        word=${word%[\"\']}
        words+=("${word//\\/}")
    done
    COMPREPLY=()
    while IFS=$'\t' read -r word _; do
        if [[ $word == '<files>' ]]; then
            compopt -o default
        else
            [[ $begun == [\"\']* ]] || printf -v word %q "$word"
            COMPREPLY+=("$word")
        fi
    done < <("${COMP_WORDS[0]/#\~/$HOME}" --complete "${words[@]}" 2>/dev/null)
}
complete -F _vantle vantle
