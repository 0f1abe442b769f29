// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exception_state.cpp - the C++ runtime's record of the exceptions that a thread handles.
//
// For files that contain the C++ runtime. If a program loads such a library with dlopen(3), glibc
// allocates the runtime's own record at the first exception of a thread, and ends the program if
// memory has run out. With the model initial-exec it is a part of the memory that each thread
// begins with. Other C libraries allocate it when the library is loaded, and refuse this model.
#include <cxxabi.h>

#ifdef __GLIBC__
namespace {

// The C++ ABI has a pointer and a number, and that of ARM a second pointer.
struct Record {
    void* caught;
    unsigned uncaught;
    void* propagating;
};
__attribute__((tls_model("initial-exec"))) constinit thread_local Record record{};

}  // namespace

namespace __cxxabiv1 {

extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
    return reinterpret_cast<__cxa_eh_globals*>(&record);
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}

}  // namespace __cxxabiv1
#endif
