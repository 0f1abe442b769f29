// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Every descriptor that the sources open is closed in the programs that they start. One that leaks
// keeps a lock or a pipe of a process that has ended.
#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

namespace fs = std::filesystem;

// The calls that may leave the flag out, and the reason.
const std::set<std::pair<std::string, std::string>> kInherited{
    // The standard streams of a process that goes into the background.
    {"velkctl/guardian/guardian_process.cpp", "open(kNull, O_RDWR)"},
    {"web/server/jobs.cpp", "open(\"/dev/null\", O_RDWR)"},
    // dup2() moves these to their numbers, and all others are closed.
    {"velkctl/guardian/guardian_process.cpp", "fcntl(lifeline, F_DUPFD, kFirstFree)"},
    {"velkctl/guardian/guardian_process.cpp", "fcntl(ready, F_DUPFD, kFirstFree)"},
    // diff(1) opens it by its number.
    {"sandbox/session/watch.cpp", "memfd_create(\"velk-sandbox\", 0)"},
};

// Comments may have words that look like calls.
std::string CodeOf(const fs::path& path) {
    std::istringstream lines(testkit::ReadFile(path));
    std::string code;
    for (std::string line; std::getline(lines, line);) {
        code.append(line.substr(0, line.find("//"))).append("\n");
    }
    return code;
}

// Returns the call that begins at the position, on one line.
std::string CallAt(const std::string& text, size_t begin) {
    size_t end = text.find('(', begin);
    for (int depth = 0; end < text.size(); ++end) {
        depth += text[end] == '(' ? 1 : text[end] == ')' ? -1 : 0;
        if (depth == 0) {
            break;
        }
    }
    return std::regex_replace(text.substr(begin, end + 1 - begin), std::regex("\\s+"), " ");
}

// True if the call has the flag itself, or in the variable `flags` before it.
bool ClosesAtExec(const std::string& call, const std::string& before) {
    if (call.find("CLOEXEC") != std::string::npos || call.ends_with("e\")")) {
        return true;
    }
    const size_t variable = before.rfind(" flags = ");
    return call.find(" flags") != std::string::npos && variable != std::string::npos &&
           before.find("CLOEXEC", variable) < before.find(';', variable);
}

// The functions of C that return a descriptor.
const std::set<std::string> kOpening{"open",         "openat",   "socket",       "socketpair",
                                     "pipe",         "pipe2",    "accept4",      "dup",
                                     "memfd_create", "signalfd", "eventfd",      "timerfd_create",
                                     "mkostemp",     "mkstemp",  "inotify_init", "inotify_init1",
                                     "fopen",        "popen",    "fcntl",        "epoll_create1"};

bool IsPartOfName(char c) {
    return isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("_.>:").find(c) != std::string::npos;
}

// Returns the function that is called at this parenthesis; empty for a member.
std::string CalledAt(const std::string& code, size_t parenthesis) {
    size_t begin = parenthesis;
    while (begin > 0 && IsPartOfName(code[begin - 1])) {
        --begin;
    }
    return code.substr(begin, parenthesis - begin);
}

struct Calls {
    size_t number = 0;
    std::set<std::pair<std::string, std::string>> inherited;
};

void AddCallsOf(const fs::path& path, Calls& calls) {
    const std::string code = CodeOf(path);
    for (size_t at = code.find('('); at != std::string::npos; at = code.find('(', at + 1)) {
        const std::string name = CalledAt(code, at);
        const std::string call = kOpening.contains(name) ? CallAt(code, at - name.size()) : "";
        if (call.empty() || (name == "fcntl" && call.find("F_DUPFD") == std::string::npos)) {
            continue;
        }
        ++calls.number;
        if (!ClosesAtExec(call, code.substr(0, at))) {
            calls.inherited.insert({fs::relative(path, VELK_SOURCE_DIR), call});
        }
    }
}

TEST(Descriptors, AreClosedInStartedPrograms) {
    Calls calls;
    for (const char* folder : {"lib", "velkctl", "sandbox", "web"}) {
        for (const fs::directory_entry& entry :
             fs::recursive_directory_iterator(fs::path(VELK_SOURCE_DIR) / folder)) {
            if (entry.path().extension() == ".cpp") {
                AddCallsOf(entry.path(), calls);
            }
        }
    }
    EXPECT_GT(calls.number, 60U) << "the pattern finds the calls";
    EXPECT_EQ(calls.inherited, kInherited);
}

}  // namespace
