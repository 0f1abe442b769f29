// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// started_programs.cpp - stand-ins for the functions of libc that start programs.
#include "fuzz/kit/started_programs.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

#include <dlfcn.h>
#include <spawn.h>
#include <unistd.h>

namespace fuzz {
namespace {

constexpr int kNotFound = 127;  // as a shell says it

struct Starts {
    bool are_refused = false;
    std::function<int(const Words& words)> stand_in;
};

Starts& OwnStarts() {
    static Starts starts;
    return starts;
}

template <typename Function>
Function* Real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

Words WordsOf(char* const* arguments) {
    Words words;
    for (; *arguments != nullptr; ++arguments) {
        words.emplace_back(*arguments);
    }
    return words;
}

// The sanitizers' reports name functions by it.
bool IsSymbolizer(std::string_view path) {
    return path.ends_with("llvm-symbolizer");
}

int Start(const char* path, char* const* arguments, char* const* environment) {
    if (!OwnStarts().are_refused || IsSymbolizer(path)) {
        return Real<decltype(execve)>("execve")(path, arguments, environment);
    }
    _exit(OwnStarts().stand_in ? OwnStarts().stand_in(WordsOf(arguments)) : kNotFound);
}

}  // namespace

void RefuseStarts() {
    OwnStarts().are_refused = true;
}

void SetStandIn(std::function<int(const Words& words)> stand_in) {
    OwnStarts().stand_in = std::move(stand_in);
}

}  // namespace fuzz

#pragma GCC visibility push(default)
extern "C" {

int execve(const char* path, char* const* arguments, char* const* environment) noexcept {
    return fuzz::Start(path, arguments, environment);
}

int execv(const char* path, char* const* arguments) noexcept {
    return fuzz::Start(path, arguments, environ);
}

int execvp(const char* path, char* const* arguments) noexcept {
    return fuzz::Start(path, arguments, environ);
}

int execl(const char* path, const char* first, ...) noexcept {
    std::vector<char*> arguments{const_cast<char*>(first)};
    va_list rest;
    va_start(rest, first);
    while (arguments.back() != nullptr) {
        arguments.push_back(va_arg(rest, char*));
    }
    va_end(rest);
    return fuzz::Start(path, arguments.data(), environ);
}

int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments,
                char* const* environment) {
    if (fuzz::OwnStarts().are_refused) {
        return ENOENT;
    }
    return fuzz::Real<decltype(posix_spawn)>("posix_spawn")(pid, path, actions, attributes,
                                                            arguments, environment);
}

FILE* popen(const char* command, const char* mode) {
    if (fuzz::OwnStarts().are_refused) {
        errno = ENOENT;
        return nullptr;
    }
    return fuzz::Real<decltype(popen)>("popen")(command, mode);
}

}  // extern "C"
#pragma GCC visibility pop
