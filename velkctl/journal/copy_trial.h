// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// copy_trial.h - a set in a private copy of its files, to be carried over to the files if no other
// program writes them meanwhile.
#ifndef VELKCTL_JOURNAL_COPY_TRIAL_H_
#define VELKCTL_JOURNAL_COPY_TRIAL_H_

#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/files/file_image.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A set of a file that the library makes on the files themselves overwrites the text that
// another program has written since a comparison. This one does not.
struct CopyTrial {
    Answer held{};                 // the value before the set
    std::vector<FileImage> now{};  // the files that the set changes, before it
    std::vector<FileImage> then{};
};

// Reads the files under the library's lock, then gets and sets the setting in a private copy.
// Returns nothing if that is not possible, if the copy does not take the value, or if this user may
// not write the files.
std::optional<CopyTrial> TryInCopy(const Setting& setting, const Data& value,
                                   const std::vector<FileImage>& files);

// Gives the files their texts under the library's lock. Returns 0 or errno. ESTALE: another program
// has written one of them since. EWOULDBLOCK: another program is changing settings.
int CarryOver(const CopyTrial& trial);

}  // namespace velkctl

#endif  // VELKCTL_JOURNAL_COPY_TRIAL_H_
