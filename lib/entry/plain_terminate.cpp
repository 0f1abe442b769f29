// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// plain_terminate.cpp - ends the process after an exception that nobody catches.
//
// For files that contain the C++ runtime. The runtime's own handler prints the type of the
// exception, for which it needs the demangler: 47 KB.
#include <cstdlib>
#include <exception>

namespace __gnu_cxx {

void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx
