// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pid_file.h - stops a daemon of the device by its PID file.
#ifndef SANDBOX_PROCESS_PID_FILE_H_
#define SANDBOX_PROCESS_PID_FILE_H_

namespace sandbox {

// Ends the daemon and removes the PID file. Does nothing if it is not running.
void StopDaemon(const char* pid_file);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PID_FILE_H_
