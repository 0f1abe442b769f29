// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// secret_source.cpp - reads secrets that are not on the command line.
#include "velkctl/changes/secret_source.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {
namespace {

Secret BadSource(std::string_view source, std::string_view text) {
    return {{}, std::string(source).append(" ").append(text)};
}

Secret CannotRead(std::string_view source, int error) {
    return BadSource(source, std::string("cannot be read; ") + strerror(error) +
                                 "; give - for standard input or @FILE for another file");
}

// Reads one line byte by byte, so that the rest of the input stays unread. `read_byte` is read(2)
// of one byte.
template <typename ReadByte>
Secret ReadLine(std::string_view source, size_t longest, ReadByte read_byte) {
    Secret secret;
    char byte = '\0';
    ssize_t got = 0;
    while ((got = read_byte(byte)) == 1 && byte != '\n') {
        if (secret.text.size() == longest) {
            return BadSource(source, "has a line of more than " + std::to_string(longest) +
                                         " bytes; give the value alone");
        }
        secret.text.push_back(byte);
    }
    if (got == -1) {
        return CannotRead(source, errno);
    }
    if (got == 0 && secret.text.empty()) {
        return BadSource(source, "is empty; give the value as one line");
    }
    return secret;
}

Secret ReadFile(const char* path, size_t longest) {
    constexpr std::string_view kSource = "the file after @";
    const velk::UniqueFd file(open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (file.get() == -1) {
        return CannotRead(kSource, errno);
    }
    const auto read_byte = [&file](char& byte) { return read(file.get(), &byte, 1); };
    Secret secret = ReadLine(kSource, longest, read_byte);
    char more = '\0';
    if (secret.problem.empty() && read_byte(more) == 1) {
        return BadSource(kSource, "has more than one line; give the value as the only one");
    }
    return secret;
}

// Standard input without echo during the lifetime. A signal ends velkctl only after the terminal is
// restored.
class HiddenInput {
  public:
    HiddenInput()
        : signal_fd_(signalfd(-1, &signals_.signals(), SFD_CLOEXEC)),
          is_terminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (is_terminal_) {
            termios hidden = before_;
            hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
            (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
        }
    }
    ~HiddenInput() {
        if (is_terminal_) {
            (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        }
    }
    HiddenInput(const HiddenInput&) = delete;
    HiddenInput& operator=(const HiddenInput&) = delete;

    bool is_terminal() const { return is_terminal_; }

    // Like read(2) of one byte. A signal counts as the end of the input.
    ssize_t ReadByte(char& byte) const {
        std::array<pollfd, 2> awaited{{{STDIN_FILENO, POLLIN, 0}, {signal_fd_.get(), POLLIN, 0}}};
        (void)poll(awaited.data(), awaited.size(), -1);
        return signals_.Pending() == 0 ? read(STDIN_FILENO, &byte, 1) : 0;
    }

  private:
    const StopSignals signals_;  // destroyed last
    const velk::UniqueFd signal_fd_;
    termios before_{};
    const bool is_terminal_;
};

// Writes to the terminal, not to the output of velkctl.
void ShowAtTerminal(const std::string& text) {
    const velk::UniqueFd terminal(open("/dev/tty", O_WRONLY | O_CLOEXEC | O_NOCTTY));
    const int fd = terminal.get() == -1 ? STDERR_FILENO : terminal.get();
    (void)!write(fd, text.data(), text.size());
}

Secret Ask(const std::string& question, size_t longest = VELK_DATA_SIZE) {
    const HiddenInput hidden;
    if (hidden.is_terminal()) {
        ShowAtTerminal(question);
    }
    Secret secret = ReadLine("standard input", longest,
                             [&hidden](char& byte) { return hidden.ReadByte(byte); });
    if (hidden.is_terminal()) {
        ShowAtTerminal("\n");  // the newline that was typed was not shown
    }
    return secret;
}

}  // namespace

Secret ReadSecret(const std::string& word, size_t longest) {
    if (word == "-") {
        return Ask("value: ", longest);
    }
    if (word.starts_with('@')) {
        return ReadFile(word.c_str() + 1, longest);
    }
    return {word, {}};
}

bool CanAskForSecret() {
    return isatty(STDIN_FILENO) == 1;
}

Secret AskForSecret(const std::string& name) {
    Secret secret = Ask("new value of " + name + ": ");
    if (!secret.problem.empty() || secret.text.empty()) {
        return secret;
    }
    const Secret again = Ask("repeat the value: ");
    return again.text == secret.text
               ? secret
               : BadSource("the second value", "differs from the first; give the same value twice");
}

}  // namespace velkctl
