// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_words.h - reads the changes that the words of a command line ask for.
#ifndef VELKCTL_CHANGES_CHANGE_WORDS_H_
#define VELKCTL_CHANGES_CHANGE_WORDS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/changes/change_set.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// A setting and the words of its new value.
struct ChangeRequest {
    Setting setting;
    std::vector<std::string> words;
};

// If values that a setting refuses are taken nevertheless.
enum class Forcing {
    kImpossible,  // the verb has no --force
    kPossible,    // the verb has --force, which was not given
    kGiven,
};

struct RequestedChanges {
    ChangeSet changes{};  // the value of a refused one is empty
    std::vector<Problem> problems{};
    // The secrets that a person or standard input gives.
    std::vector<ChangeRequest> unread_secrets{};
};

// Reads "NAME VALUE..." or, if the first word has an "=", any number of "NAME=VALUE". A prefix
// length after an address is a change of the netmask. Reads secrets from files; leaves the others
// unread. `verb` begins the messages about words that name no setting.
RequestedChanges ReadChanges(std::string_view verb, const std::vector<std::string>& words,
                             Forcing forcing);

// Reads the unread secrets from standard input, or asks for them, and adds their changes.
void AskForSecrets(RequestedChanges& requested, Forcing forcing);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_CHANGE_WORDS_H_
