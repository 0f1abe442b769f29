// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_call.h - runs a command of the library.
#ifndef VELKCTL_CALL_LIBRARY_CALL_H_
#define VELKCTL_CALL_LIBRARY_CALL_H_

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Runs the command with these data bytes, without a time limit.
Answer CallLibrary(const Command& command, const Data& data = {});

}  // namespace velkctl

#endif  // VELKCTL_CALL_LIBRARY_CALL_H_
