// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// watch.h - prints changes of a device's files.
#ifndef SANDBOX_SESSION_WATCH_H_
#define SANDBOX_SESSION_WATCH_H_

namespace sandbox {

// Prints each change of a file of this process's device as diff(1) does. Does not return, but
// throws Failure.
[[noreturn]] void WatchFiles();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_WATCH_H_
