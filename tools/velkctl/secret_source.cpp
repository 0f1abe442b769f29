// secret_source.cpp - secrets that need not stand on a command line.
#include "velkctl/secret_source.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace velkctl {
namespace {

class File {
  public:
    explicit File(const char* path) : fd_(open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
    ~File() {
        if (fd_ != -1) {
            (void)close(fd_);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int fd() const { return fd_; }

  private:
    const int fd_;
};

Secret Problem(std::string_view source, std::string_view what) {
    return {{}, std::string(source).append(" ").append(what)};
}

Secret CannotRead(std::string_view source, int error) {
    return Problem(source, std::string("cannot be read: ") + strerror(error) +
                               "; '-' takes the value from standard input, @FILE from a file");
}

// Reads up to the end of the line and no further, which only single bytes allow.
Secret ReadLine(int fd, std::string_view source, size_t longest) {
    Secret secret;
    char byte = '\0';
    ssize_t got = 0;
    while ((got = read(fd, &byte, 1)) == 1 && byte != '\n') {
        if (secret.text.size() == longest) {
            return Problem(source, "has a line of more than " + std::to_string(longest) +
                                       " bytes; give the value alone");
        }
        secret.text.push_back(byte);
    }
    if (got == -1) {
        return CannotRead(source, errno);
    }
    if (got == 0 && secret.text.empty()) {
        return Problem(source, "is empty; give the value as one line");
    }
    return secret;
}

bool HasMore(int fd) {
    char byte = '\0';
    return read(fd, &byte, 1) == 1;
}

Secret ReadFile(const char* path, size_t longest) {
    constexpr std::string_view kSource = "the file behind @";
    const File file(path);
    if (file.fd() == -1) {
        return CannotRead(kSource, errno);
    }
    Secret secret = ReadLine(file.fd(), kSource, longest);
    if (secret.problem.empty() && HasMore(file.fd())) {
        return Problem(kSource, "has more than one line; give the value as the only one");
    }
    return secret;
}

volatile sig_atomic_t caught_signal = 0;

// While it lives, what is typed at standard input is not shown. A signal that would end the program
// ends it when the terminal is as it was.
class HiddenTyping {
  public:
    HiddenTyping() : is_terminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (!is_terminal_) {
            return;
        }
        struct sigaction note {};
        note.sa_handler = [](int signal) { caught_signal = signal; };
        for (size_t i = 0; i < kSignals.size(); ++i) {
            (void)sigaction(kSignals[i], &note, &handlers_[i]);
        }
        termios hidden = before_;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenTyping() {
        if (!is_terminal_) {
            return;
        }
        (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
        for (size_t i = 0; i < kSignals.size(); ++i) {
            (void)sigaction(kSignals[i], &handlers_[i], nullptr);
        }
        if (caught_signal != 0) {
            (void)raise(caught_signal);
        }
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;

    bool is_terminal() const { return is_terminal_; }

  private:
    static constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

    termios before_{};
    std::array<struct sigaction, kSignals.size()> handlers_{};
    const bool is_terminal_;
};

Secret Ask(const std::string& question, size_t longest = VELK_DATA_SIZE) {
    const HiddenTyping hidden;
    if (hidden.is_terminal()) {
        (void)fputs(question.c_str(), stderr);
    }
    Secret secret = ReadLine(STDIN_FILENO, "standard input", longest);
    if (hidden.is_terminal()) {
        (void)fputs("\n", stderr);  // in the place of the one that was typed
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
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

Secret AskForSecret(const std::string& name) {
    Secret secret = Ask("new value of " + name + ": ");
    if (!secret.problem.empty()) {
        return secret;
    }
    const Secret again = Ask("the same again: ");
    return again.text == secret.text ? secret
                                     : Problem("the second value", "differs from the first");
}

}  // namespace velkctl
