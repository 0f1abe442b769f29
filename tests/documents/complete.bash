# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# complete.bash COMPLETION FUNCTION - reads command lines, a word a line with an empty line after each, and
# prints the candidates for the last word of each in the same form.
# shellcheck shell=bash
compopt() { :; }
# shellcheck source=/dev/null
. "$1" || exit
words_of_line=()
while IFS= read -r word; do
    if [ -n "$word" ]; then
        words_of_line+=("${word#=}") # each word is marked, as it may be empty
        continue
    fi
    COMP_WORDS=("${words_of_line[@]}") COMP_CWORD=$((${#words_of_line[@]} - 1)) COMPREPLY=()
    "$2"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
    echo
    words_of_line=()
done
