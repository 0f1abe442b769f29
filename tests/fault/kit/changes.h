// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changes.h - changes of settings, made as velkctl makes them but with real tools.
#ifndef TESTS_FAULT_KIT_CHANGES_H_
#define TESTS_FAULT_KIT_CHANGES_H_

#include <optional>
#include <string>

#include "fault/kit/scene.h"
#include "velk.h"
#include "velkctl/changes/change_set.h"

namespace fault {

// Returns the change that a request makes in a file; nothing for other requests.
std::optional<velkctl::SettingChange> ChangeOf(const _velk_request& request);

// The functions below run in a child process, with tools from this PATH.

// The set as the verb makes it, without its messages.
int MakeSet(Device& tools, const velkctl::ChangeSet& changes, const std::string& path);

// Several settings as one change, without restarts.
int MakeApply(Device& tools, const velkctl::ChangeSet& changes, const std::string& path);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_CHANGES_H_
