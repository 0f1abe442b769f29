# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# complete.zsh COMPLETION - reads command lines, a word a line with an empty line after each, and prints the
# candidates for the last word of each in the same form. The functions of zsh's own completion that the
# completions call are replaced by short ones, which print instead of offering.
emit() {
    local candidate
    for candidate; do
        [[ $candidate == "$PREFIX"* ]] && print -r -- "$IPREFIX$candidate"
    done
}
compadd() {
    while [[ $1 == -* ]]; do
        case $1 in
            --) shift && break ;;
            -V) shift 2 ;;
            *) print -r -- "compadd: unknown option $1" >&2 && exit 1 ;;
        esac
    done
    emit "$@"
}
_describe() {
    local array row suffix=
    while [[ $1 == -* ]]; do
        case $1 in
            -t) shift 2 ;;
            -o | -V) shift ;;
            *) print -r -- "_describe: unknown option $1" >&2 && exit 1 ;;
        esac
    done
    array=$2
    [[ ${3-} == -S ]] && suffix=$4
    for row in "${(@P)array}"; do
        emit "${row%%:*}$suffix"
    done
}
_files() { emit *(N) }
_directories() { emit *(N/) }
_normal() { : }
_call_program() { shift && "$@" }
compset() { # -P PREFIX
    [[ $PREFIX == "$2"* ]] || return
    IPREFIX+=$2
    PREFIX=${PREFIX#"$2"}
}

words_of_line=()
while IFS= read -r word; do
    if [[ -n $word ]]; then
        words_of_line+=("${word#=}")
        continue
    fi
    words=("${words_of_line[@]}")
    CURRENT=$#words
    PREFIX=$words[CURRENT] IPREFIX=
    source $1 </dev/null
    print
    words_of_line=()
done
