// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_password.cpp - changes the file of the users.
#include "web/server/set_password.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <vector>

#include <grp.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "web/server/run_folder.h"
#include "web/server/users.h"

namespace velkweb {
namespace {

constexpr char kGroup[] = "velk-web";
constexpr mode_t kMode = 0640;

int Fail(const std::string& message, const std::string& detail = {}) {
    (void)fprintf(stderr, "velk-web: %s\n", message.c_str());
    if (!detail.empty()) {
        (void)fprintf(stderr, "  %s\n", detail.c_str());
    }
    return 1;
}

termios& TerminalBefore() {
    static termios before{};
    return before;
}

// A signal such as that of Ctrl-C must not leave the terminal without its echo.
void EndWithEcho(int signal_number) {
    (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &TerminalBefore());
    (void)signal(signal_number, SIG_DFL);
    (void)raise(signal_number);
}

// Switches the echo of the terminal off.
class NoEcho {
  public:
    NoEcho() : is_changed_(tcgetattr(STDIN_FILENO, &TerminalBefore()) == 0) {
        for (const int signal_number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            (void)signal(signal_number, EndWithEcho);
        }
        termios silent = TerminalBefore();
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        is_changed_ = is_changed_ && tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) == 0;
    }
    ~NoEcho() {
        if (is_changed_) {
            (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &TerminalBefore());
        }
    }
    NoEcho(const NoEcho&) = delete;
    NoEcho& operator=(const NoEcho&) = delete;

  private:
    bool is_changed_;
};

// Reads a line; without its end.
std::string ReadLine() {
    std::string line;
    char byte = 0;
    while (line.size() <= kLongestPassword + 1 && velk::ReadSome(STDIN_FILENO, &byte, 1) == 1 &&
           byte != '\n') {
        line.push_back(byte);
    }
    return line;
}

std::string AskForLine(const char* question) {
    (void)fputs(question, stderr);
    std::string line = ReadLine();
    (void)fputs("\n", stderr);
    return line;
}

// Returns the password; nothing if the two at the terminal differ.
std::optional<std::string> ReadPassword() {
    if (isatty(STDIN_FILENO) == 0) {
        return ReadLine();
    }
    const NoEcho no_echo;
    const std::string first = AskForLine("New password: ");
    return AskForLine("The same again: ") == first ? std::optional(first) : std::nullopt;
}

std::string TextOfUsers(const std::vector<User>& users) {
    std::string text;
    for (const User& user : users) {
        text.append(user.name).append(":").append(user.hash).append("\n");
    }
    return text;
}

// Only the group of the server may read the hashes. Without the group nobody but root may. The
// file gets its group before it takes its place: a server that cannot read it would end all
// sessions. It is on the disk before, so that a power failure leaves the old file or the new one.
bool FinishUsersFile(int fd) {
    const group* entry = getgrnam(kGroup);
    const bool is_open =
        entry == nullptr || (fchown(fd, 0, entry->gr_gid) == 0 && fchmod(fd, kMode) == 0);
    return is_open && fsync(fd) == 0;
}

int Write(const std::vector<User>& users) {
    if (ReplaceFile(kUsersFile, TextOfUsers(users), FinishUsersFile)) {
        return 0;
    }
    return Fail(std::string(kUsersFile) + ": cannot be written", strerror(errno));
}

// Two commands at once change the file in turn.
velk::UniqueFd LockUsers() {
    std::error_code problem;
    std::filesystem::create_directories(std::filesystem::path(kUsersFile).parent_path(), problem);
    return AwaitLock(std::string(kUsersFile) + ".lock");
}

// Returns the users; those of a missing file are none. Nothing if it cannot be read.
std::optional<std::vector<User>> PresentUsers() {
    std::optional<std::vector<User>> users = ReadUsers();
    return users || errno != ENOENT ? users : std::optional(std::vector<User>());
}

}  // namespace

int SetPassword(const std::string& name) {
    if (!IsUserName(name)) {
        return Fail("the name of the user is not valid",
                    "give a letter, then letters, digits, '-', '_' and '.', 32 at most");
    }
    const std::optional<std::string> password = ReadPassword();
    if (!password) {
        return Fail("the two passwords differ; nothing was changed");
    }
    if (!IsPasswordForm(*password)) {
        return Fail("the password is empty or longer than 256 bytes; nothing was changed");
    }
    const std::string hash = HashOf(*password);
    if (hash.empty()) {
        return Fail("the password could not be hashed", strerror(errno));
    }
    const velk::UniqueFd lock = LockUsers();
    std::optional<std::vector<User>> users = PresentUsers();
    if (!users) {
        return Fail(std::string(kUsersFile) + ": cannot be read", strerror(errno));
    }
    std::erase_if(*users, [&name](const User& user) { return user.name == name; });
    users->push_back({name, hash});
    return Write(*users);
}

int RemoveUser(const std::string& name) {
    const velk::UniqueFd lock = LockUsers();
    std::optional<std::vector<User>> users = PresentUsers();
    if (!users) {
        return Fail(std::string(kUsersFile) + ": cannot be read", strerror(errno));
    }
    if (std::erase_if(*users, [&name](const User& user) { return user.name == name; }) == 0) {
        return Fail("there is no such user; nothing was changed");
    }
    return Write(*users);
}

}  // namespace velkweb
