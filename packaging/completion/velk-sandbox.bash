# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# velk-sandbox.bash - completes the words of velk-sandbox.
# shellcheck shell=bash
#
# The subcommands and options come from "velk-sandbox --help", the names of devices from "velk-sandbox
# list". A command is completed as it is without velk-sandbox.

# Prints the options of a subcommand, or those before it, one a line.
_velk_sandbox_options() { # [SUBCOMMAND]
    velk-sandbox "$@" --help 2>/dev/null | while IFS= read -r line; do
        [[ $line =~ ^\ \ ((-[a-z]),)?(--[a-z-]+)(\ |$) ]] || continue
        printf '%s\n' ${BASH_REMATCH[2]:+"${BASH_REMATCH[2]}"} "${BASH_REMATCH[3]}"
    done
}

# Prints the subcommands, one a line.
_velk_sandbox_verbs() {
    velk-sandbox --help 2>/dev/null | while IFS= read -r line; do
        case $line in
            'Subcommands:') in_verbs=1 ;;
            '') in_verbs= ;;
            *) [[ -n ${in_verbs-} && $line =~ ^\ \ ([a-z]+)\  ]] && printf '%s\n' "${BASH_REMATCH[1]}" ;;
        esac
    done
}

# Finds the subcommand, the number of words after it that are no options, the option that still needs
# its value, and the place of the command, or 0.
_velk_sandbox_sort_words() {
    local at word
    verb='' awaiting='' plain=0 command_at=0
    for ((at = 1; at < COMP_CWORD; ++at)); do
        word=${COMP_WORDS[at]}
        if [ -n "$awaiting" ]; then
            [ "$word" = = ] || awaiting=
        elif [ "$word" = -- ]; then
            command_at=$((at + 1))
            return
        elif [[ $word == -* ]]; then
            case $word in --name | --writable | --rootfs) awaiting=$word ;; esac
        elif [ "${COMP_WORDS[at - 1]}" = --web ] && [[ $word =~ ^[0-9]+$ ]]; then
            : # the port
        elif [ -z "$verb" ] && grep -qxF -e "$word" <(_velk_sandbox_verbs); then
            verb=$word
        elif [ -z "$verb" ] || [ "$verb" = enter ]; then
            command_at=$at
            return
        else
            plain=$((plain + 1))
        fi
    done
}

# Prints the programs of the search path, and files, that begin with a word.
_velk_sandbox_programs() { # BEGINNING
    if [[ $1 == */* ]]; then
        compgen -f -- "$1"
    else
        compgen -c -- "$1" | sort -u
    fi
}

# Completes a word of the command, with the completion of its own program if there is one.
_velk_sandbox_command() { # PLACE
    local place=$1 completion
    COMP_WORDS=("${COMP_WORDS[@]:place}")
    COMP_CWORD=$((COMP_CWORD - place))
    if ! complete -p "${COMP_WORDS[0]}" >/dev/null 2>&1 && declare -F _completion_loader >/dev/null; then
        _completion_loader "${COMP_WORDS[0]}"
    fi
    completion=$(complete -p "${COMP_WORDS[0]}" 2>/dev/null)
    if [[ $completion =~ -F\ ([^ ]+) ]]; then
        "${BASH_REMATCH[1]}" "${COMP_WORDS[0]}" "$2" "${COMP_WORDS[COMP_CWORD - 1]}"
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$2")
        compopt -o filenames 2>/dev/null
    fi
}

# Prints the candidates for a word of velk-sandbox, one a line.
_velk_sandbox_candidates() { # CURRENT
    case $awaiting:$verb in
        --name:) return ;; # a new name
        --name:*) velk-sandbox list 2>/dev/null ;;
        --rootfs:*) compgen -f -- "$1" ;; # a folder or an archive
        --*) compgen -d -- "$1" ;;
        :)
            [[ $1 == */* ]] || _velk_sandbox_verbs
            _velk_sandbox_programs "$1"
            ;;
        :enter) _velk_sandbox_programs "$1" ;;
        :cable | :adapter | :router) [ "$plain" -gt 0 ] || printf '%s\n' in out ;;
    esac
}

_velk_sandbox() {
    local verb awaiting plain command_at current=${2-${COMP_WORDS[COMP_CWORD]}} found word
    COMPREPLY=()
    [ "$current" != = ] || current=
    _velk_sandbox_sort_words
    if [ "$command_at" -gt 0 ] && [ "$command_at" -lt "$COMP_CWORD" ]; then
        _velk_sandbox_command "$command_at" "$current"
        return
    elif [ "$command_at" -gt 0 ]; then
        found=$(_velk_sandbox_programs "$current")
    elif [[ -z $awaiting && $current == -* ]]; then
        found=$(_velk_sandbox_options ${verb:+"$verb"})
    else
        found=$(_velk_sandbox_candidates "$current")
    fi
    while IFS= read -r word; do
        [[ -n $word && $word == "$current"* ]] && COMPREPLY+=("$word")
    done <<<"$found"
    [[ $awaiting != --writable && $awaiting != --rootfs && $current != */* ]] ||
        compopt -o filenames 2>/dev/null
}

complete -F _velk_sandbox velk-sandbox
