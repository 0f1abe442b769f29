// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pause.h - waits a short time.
#ifndef VELKCTL_CALL_PAUSE_H_
#define VELKCTL_CALL_PAUSE_H_

#include <chrono>

namespace velkctl {

// Waits. A signal with a handler ends the wait.
void Pause(std::chrono::milliseconds time);

}  // namespace velkctl

#endif  // VELKCTL_CALL_PAUSE_H_
