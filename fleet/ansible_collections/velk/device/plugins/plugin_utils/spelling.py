# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Describes a name that is no setting, in the words of velkctl. tests/fleet compares both."""

from ansible_collections.velk.device.plugins.plugin_utils.catalogue import OTHER_NAMES, SETTINGS

INTERFACES = ["eth0", "eth1"]
FARTHEST = 2
SHORTEST_BEGINNING = 3
MOST_GUESSES = 4
LONGEST_WORD = 64
LONGEST_QUOTE = 40


def _distance(word, other):
    """Returns the number of letters to change, add, remove or swap with their neighbour."""
    word, other = word.lower(), other.lower()
    steps = [[i + j if i == 0 or j == 0 else 0 for j in range(len(other) + 1)] for i in range(len(word) + 1)]
    for i in range(1, len(word) + 1):
        for j in range(1, len(other) + 1):
            changed = steps[i - 1][j - 1] + (word[i - 1] != other[j - 1])
            steps[i][j] = min(changed, steps[i - 1][j] + 1, steps[i][j - 1] + 1)
            if i > 1 and j > 1 and word[i - 1] == other[j - 2] and word[i - 2] == other[j - 1]:
                steps[i][j] = min(steps[i][j], steps[i - 2][j - 2] + 1)
    return steps[-1][-1]


def _other_names(word, candidates):
    return [meant for other, meant in OTHER_NAMES if other == word.lower() and meant in candidates]


def _nearest(word, candidates):
    distances = [(_distance(word, candidate), candidate) for candidate in candidates]
    near = [(d, c) for d, c in distances if d <= FARTHEST and 2 * d < len(c)]
    fewest = min((d for d, c in near), default=0)
    return [candidate for distance, candidate in near if distance == fewest]


def _suggestions(word, candidates):
    if len(word) > LONGEST_WORD:
        return []
    meant = _other_names(word, candidates) or _nearest(word, candidates)
    if not meant and len(word) >= SHORTEST_BEGINNING:
        meant = [candidate for candidate in candidates if candidate.startswith(word)]
    return meant if len(meant) <= MOST_GUESSES else []


def _own_name(name):
    return name.rpartition(".")[2]


def _short_names():
    return list(dict.fromkeys(_own_name(name) for name in SETTINGS))


def _full_names(own_name):
    return [
        name
        for name, setting in SETTINGS.items()
        if _own_name(name) == own_name or str(setting["id"]) == own_name
    ]


def _full_names_of(own_names):
    return [name for own_name in own_names for name in _full_names(own_name)]


def _names_elsewhere(name):
    own = _own_name(name)
    interface = name[: len(name) - len(own)]
    names = _full_names_of(_other_names(own, _short_names()))
    return [other for other in names if other.startswith(interface)] or names


def _guessed_names(name):
    return (
        _names_elsewhere(name)
        or _suggestions(name, list(SETTINGS))
        or _full_names_of(_suggestions(_own_name(name), _short_names()))
    )


def quoted(word):
    """Returns the word in quotes, or its beginning if it is long."""
    shown = word if len(word) <= LONGEST_QUOTE else word[:LONGEST_QUOTE] + "..."
    return f"'{shown}'"


def _one_of(words):
    return " or ".join(filter(None, [", ".join(words[:-1]), words[-1]]))


def _did_you_mean(words):
    return f"did you mean {_one_of(words)}?"


def find_setting(name):
    """Returns the full name of a setting. The interface may be left out if only one has it."""
    if name in SETTINGS:
        return name
    names = [full for full in SETTINGS if _own_name(full) == name]
    return names[0] if len(names) == 1 else None


def unknown_setting(name):
    """Returns the message about a name that find_setting() does not find, and the advice."""
    if "=" in name:
        return f"{quoted(name.partition('=')[0])} is followed by '='", "give the name alone"
    if any(letter in name for letter in "*?["):
        return f"{quoted(name)} is a pattern, for get and show only", "give one name"
    right = _full_names(_own_name(name))
    if right:
        lacks_interface = len(right) > 1 and name in _short_names()
        both = f"{quoted(name)} is a setting of both interfaces"
        return both if lacks_interface else f"unknown setting {quoted(name)}", f"give {_one_of(right)}"
    if name in INTERFACES:
        return f"{quoted(name)} is an interface, not a setting", f"'velkctl show {name}' shows its settings"
    interfaces = _suggestions(name, INTERFACES)
    if interfaces:
        return f"{quoted(name)} is not an interface of the device", _did_you_mean(interfaces)
    meant = _guessed_names(name)
    advice = _did_you_mean(meant) if meant else "'velkctl list' names them all"
    return f"unknown setting {quoted(name)}", advice
