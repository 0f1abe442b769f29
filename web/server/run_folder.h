// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// run_folder.h - the folder in memory that keeps sessions, jobs and failed logins.
#ifndef WEB_SERVER_RUN_FOLDER_H_
#define WEB_SERVER_RUN_FOLDER_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/unique_fd.h"

namespace velkweb {

// Nobody but this program's user may read it.
inline constexpr char kRunFolder[] = "/run/velk-web";

// Makes the folder and those in it if they are missing. Returns false if it cannot be used: it
// belongs to another user, others may open it, or it is a link.
bool PrepareRunFolder();

// Returns the path of a file in the folder.
std::string RunPath(std::string_view name);

// Returns the text of a file of at most `limit` bytes; nothing if it cannot be read or is longer.
std::optional<std::string> ReadFileText(const std::string& path, size_t limit);

// Replaces the file in one step by one that its owner alone may read. `finish` may change the new
// file before; if it returns false, the old one stays. Returns false with errno on failure.
bool ReplaceFile(const std::string& path, std::string_view text, bool (*finish)(int fd) = nullptr);

// Returns the names in a folder.
std::vector<std::string> NamesIn(const std::string& folder);

// Takes the lock of a file, which is made if it is missing. Waits for another holder. Returns no
// descriptor on failure.
velk::UniqueFd AwaitLock(const std::string& path);

// The same, but waits so many seconds at most.
velk::UniqueFd AwaitLockFor(const std::string& path, int seconds);

// The same without waiting.
velk::UniqueFd TryLock(const std::string& path);

// Returns the path of the lock of the runs that ask the wireless daemon.
std::string DaemonLockPath();

// Takes one of several places that are locked while this process and its copies run. Returns no
// descriptor if all are taken.
velk::UniqueFd TakePlace(const std::string& name, int places);

// Returns the seconds since the start of the device, which no change of the clock moves.
int64_t SecondsSinceBoot();

// Returns random bytes as hexadecimal digits.
std::string RandomHex(size_t bytes);

// True if all characters are lower-case hexadecimal digits, `length` of them.
bool IsHex(std::string_view text, size_t length);

// Compares in a time that depends on the lengths alone.
bool IsSameSecret(std::string_view one, std::string_view other);

}  // namespace velkweb

#endif  // WEB_SERVER_RUN_FOLDER_H_
