# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

# velkctl.bash - completes the words of velkctl.
# shellcheck shell=bash
#
# The names and values come from velkctl's "--help", "list" and "describe", which read nothing of the
# device and never wait. The ids of changes come from "history", which reads the journal alone.

# Prints the verbs, one a line.
_velkctl_verbs() {
    velkctl --help 2>/dev/null | while IFS= read -r line; do
        case $line in
            'Verbs:') in_verbs=1 ;;
            '') in_verbs= ;;
            *) [[ -n ${in_verbs-} && $line =~ ^\ \ ([a-z]+)\  ]] && printf '%s\n' "${BASH_REMATCH[1]}" ;;
        esac
    done
}

# Prints the options of a verb, or those before it, one a line.
_velkctl_options() { # [VERB]
    velkctl "$@" --help 2>/dev/null | while IFS= read -r line; do
        [[ $line =~ ^\ \ ((-[a-z]),)?(--[a-z-]+)(\ |$) ]] || continue
        printf '%s\n' ${BASH_REMATCH[2]:+"${BASH_REMATCH[2]}"} "${BASH_REMATCH[3]}"
    done
}

# Prints the settings, one a line: name, id, interface or null, readable, changeable.
_velkctl_settings() {
    local key value name='' id='' interface='' get=''
    velkctl list --json 2>/dev/null | while read -r key value; do
        value=${value%,}
        value=${value#\"}
        value=${value%\"}
        case $key in
            '"name":') name=$value ;;
            '"id":') id=$value ;;
            '"interface":') interface=$value ;;
            '"get":') get=$value ;;
            '"set":') printf '%s %s %s %s %s\n' "$name" "$id" "$interface" "$get" "$value" ;;
        esac
    done
}

# Prints a field of every matching setting, one a line, each once.
_velkctl_pick() { # name|id|interface get|set|any [ID]
    local name id interface get set picked=' ' word
    _velkctl_settings | while read -r name id interface get set; do
        [ "$2" = get ] && [ "$get" != true ] && continue
        [ "$2" = set ] && [ "$set" != true ] && continue
        [ -n "${3-}" ] && [ "$3" != "$id" ] && continue
        case $1 in
            name) word=$name ;;
            id) word=$id ;;
            interface) word=$interface ;;
        esac
        [ "$word" = null ] && continue
        case $picked in *" $word "*) continue ;; esac
        picked="$picked$word "
        printf '%s\n' "$word"
    done
}

# Prints the ids of the changes in the journal, the last one first.
_velkctl_changes() {
    velkctl history --no-pager 2>/dev/null | sed -n 's/^\([a-z0-9]\{4\}\)  .*/\1/p'
}

_velkctl_is_secret() { # NAME
    [[ $(velkctl describe "$1" --json 2>/dev/null) == *'"secret": true'* ]]
}

# Prints the next words of a setting's values, after the words already given.
_velkctl_values() { # NAME WORD...
    local name=$1 line in_values='' given last=''
    shift
    given="$*${1+ }"
    velkctl describe "$name" --json 2>/dev/null | while read -r line; do
        case $line in
            '"values": [') in_values=1 ;;
            ']'*) in_values= ;;
            '"'*)
                [ -n "$in_values" ] || continue
                line=${line%,}
                line=${line#\"}
                line=${line%\"}
                case $line in "$given"*) ;; *) continue ;; esac
                line=${line#"$given"}
                line=${line%% *}
                [ "$line" = "$last" ] || printf '%s\n' "$line"
                last=$line
                ;;
        esac
    done
}

# Prints the matching files after "@", one a line.
_velkctl_files() { # BEGINNING
    compgen -f -- "$1" | while IFS= read -r file; do
        printf '@%q%s\n' "$file" "$([ -d "$file" ] && echo /)"
    done
}

# Prints the matching files, one a line.
_velkctl_documents() { # BEGINNING
    _velkctl_files "$1" | while IFS= read -r file; do
        printf '%s\n' "${file#@}"
    done
}

# Prints the values of a setting for NAME=VALUE, or files after "@" for a secret, one a line.
_velkctl_assigned() { # NAME VALUE
    case $2 in
        @*) ! _velkctl_is_secret "$1" || _velkctl_files "${2#@}" ;;
        *) _velkctl_values "$1" ;;
    esac
}

# Prints the words NAME=VALUE, or without a value the names that are not among the words.
_velkctl_assignments() { # CURRENT WORD...
    local current=$1 word
    shift
    if [[ $current == *=* ]]; then
        _velkctl_assigned "${current%%=*}" "${current#*=}" | while IFS= read -r word; do
            printf '%s\n' "${current%%=*}=$word"
        done
        return
    fi
    _velkctl_pick name set | while IFS= read -r word; do
        case " $*" in *" $word="*) ;; *) printf '%s=\n' "$word" ;; esac
    done
}

# Prints the candidates for a word after the words of a verb, one a line. The word itself only selects
# their kind.
_velkctl_candidates() { # WORD VERB WORD...
    local current=$1 verb=${2-} count
    shift 2
    count=$#
    case $verb in
        get) _velkctl_pick name get ;;
        set)
            if [[ $current == *=* || ${1-} == *=* ]]; then
                _velkctl_assignments "$current" "$@"
            elif [ "$count" -eq 0 ]; then
                _velkctl_pick name set
            else
                _velkctl_values "$@"
            fi
            ;;
        apply)
            if [[ $current == *=* || ${1-} == *=* ]]; then
                _velkctl_assignments "$current" "$@"
            elif [ "$count" -eq 0 ]; then
                _velkctl_assignments "$current"
                _velkctl_documents "$current"
            fi
            ;;
        import | capture) [ "$count" -gt 0 ] || _velkctl_documents "$current" ;;
        diff) [ "$count" -gt 1 ] || _velkctl_documents "$current" ;;
        help) [ "$count" -gt 0 ] || _velkctl_verbs ;;
        show)
            _velkctl_pick interface any
            case $current in ?*) _velkctl_pick name get ;; esac
            ;;
        restart | list | status) [ "$count" -gt 0 ] || _velkctl_pick interface any ;;
        describe)
            [ "$count" -eq 0 ] || return
            case $current in
                [0-9]*) _velkctl_pick id any ;;
                *) _velkctl_pick name any ;;
            esac
            ;;
        explain)
            [ "$count" -gt 0 ] || printf '%s\n' LIB_VELK_SUCCESS LIB_VELK_FAILURE LIB_VELK_LOCKED \
                LIB_VELK_INVALID_PARAMETER LIB_VELK_NO_ADAPTER LIB_VELK_WIRED_LINKED
            ;;
        undo | confirm | revert) [ "$count" -gt 0 ] || _velkctl_changes ;;
        extend) [ "$count" -ne 1 ] || _velkctl_changes ;;
        call)
            case $count:${1-} in
                0:) printf '%s\n' get set restart ;;
                1:restart) echo 1 ;;
                1:*) _velkctl_pick id "$1" ;;
                2:restart) _velkctl_pick interface any ;;
                2:*) _velkctl_pick interface "$1" "$2" ;;
            esac
            ;;
    esac
}

# Joins the pieces of the command line, which bash splits at "=", ":" and "@". Sets `words` to all
# words up to the one being completed.
_velkctl_join_words() {
    local i piece glue=''
    words=()
    for ((i = 0; i <= COMP_CWORD; ++i)); do
        piece=${COMP_WORDS[i]}
        if [[ ${#words[@]} -gt 0 && ($glue || $piece == [=:]*) ]]; then
            words[${#words[@]} - 1]+=$piece
        else
            words+=("$piece")
        fi
        [[ $piece == *[=:@] && $piece != *[!=:@]* ]] && glue=1 || glue=
    done
}

# Finds the verb, the words after it that are no options, and the option that still needs its value.
_velkctl_sort_words() {
    local word takes_value='' only_words=''
    verb=
    plain=()
    for word in "${words[@]:1:${#words[@]}-2}"; do
        if [ -n "$takes_value" ]; then
            takes_value=
        elif [ -z "$only_words" ] && [[ $word == -?* ]]; then
            case $word in
                --) only_words=1 ;;
                --text | --hex | --timeout | --restart | --only | --confirm-within | --confirm-if | --output | --root)
                    takes_value=$word
                    ;;
            esac
        elif [ -z "$verb" ]; then
            verb=$word
        else
            plain+=("$word")
        fi
    done
    awaiting=$takes_value
    no_options=$only_words
}

_velkctl() {
    local words verb plain awaiting no_options current found piece word
    _velkctl_join_words
    _velkctl_sort_words
    current=${words[${#words[@]} - 1]}
    COMPREPLY=()
    if [ -n "$awaiting" ]; then
        case $awaiting:$current in
            --restart:*) found=$(printf '%s\n' auto never eth0 eth1) ;;
            --only:*) found=$(_velkctl_pick interface any && _velkctl_pick name set) ;;
            --output:*) found=$(_velkctl_documents "$current") ;;
            --root:*) found=$(_velkctl_documents "$current" | grep '/$') ;;
            --text:@* | --hex:@*) found=$(_velkctl_files "${current#@}") ;;
            *) return 0 ;;
        esac
    elif [[ $current == -* && -z $no_options && ! ($verb == explain && $current == -[0-9]*) ]]; then
        found=$(_velkctl_options ${verb:+"$verb"})
    elif [ -z "$verb" ]; then
        found=$(_velkctl_verbs)
    elif [[ $verb == set && ${#plain[@]} -eq 1 && $current == @* ]] &&
        _velkctl_is_secret "${plain[0]}"; then
        found=$(_velkctl_files "${current#@}")
    else
        found=$(_velkctl_candidates "$current" "$verb" ${plain[@]+"${plain[@]}"})
    fi
    # The second argument is the piece of the word to replace; without it, the last piece of the word.
    piece=${COMP_WORDS[COMP_CWORD]}
    [[ $piece == *[!=:@]* ]] || piece=
    piece=${2-$piece}
    while IFS= read -r word; do
        [[ -n $word && $word == "$current"* ]] && COMPREPLY+=("${word:${#current}-${#piece}}")
    done <<<"$found"
    [[ ${COMPREPLY[*]} != *[/=] ]] || compopt -o nospace 2>/dev/null
}

complete -F _velkctl velkctl
