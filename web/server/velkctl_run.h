// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// velkctl_run.h - runs velkctl.
#ifndef WEB_SERVER_VELKCTL_RUN_H_
#define WEB_SERVER_VELKCTL_RUN_H_

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace velkweb {

// One run of velkctl: its words, without its name and --json, and its standard input. No shell
// reads the words. Everybody can see them in the list of processes, so that no secret may be among
// them.
struct VelkctlRun {
    std::vector<std::string> words;
    std::string input{};
};

// True if the run asks the wireless daemon. It replies to one path, so that two programs that ask
// at once take each other's replies.
bool AsksDaemon(const VelkctlRun& run);

// Returns the arguments of the program that makes the run. Root runs velkctl itself; another user
// runs the installed one through sudo.
std::vector<std::string> CommandOf(const VelkctlRun& run, bool is_root);

// Starts the run in a process of its own, with a clean environment and no descriptor but its
// standard ones. Its output goes to `output`. Returns 0 on failure.
pid_t StartVelkctl(const VelkctlRun& run, int output);

// Makes the run and returns its document. Nothing if it has printed none within `seconds`: `*late`
// is then true if the time is over.
std::optional<std::string> RunVelkctl(const VelkctlRun& run, int seconds, bool* late);

// True if the text is a document of velkctl.
bool IsDocument(const std::string& text);

// The longest document that velkctl prints here, in bytes.
inline constexpr size_t kLongestDocument = size_t{1024} * 1024;

}  // namespace velkweb

#endif  // WEB_SERVER_VELKCTL_RUN_H_
