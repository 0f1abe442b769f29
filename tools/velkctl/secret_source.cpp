// secret_source.cpp - secrets that need not stand on a command line.
#include "velkctl/secret_source.h"

#include <cerrno>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "velkctl/data.h"

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
Secret ReadLine(int fd, std::string_view source) {
    Secret secret;
    char byte = '\0';
    ssize_t got = 0;
    while ((got = read(fd, &byte, 1)) == 1 && byte != '\n') {
        if (secret.text.size() == VELK_DATA_SIZE) {
            return Problem(source, "has a line of more than 512 bytes; give the value alone");
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

Secret ReadFile(const char* path) {
    constexpr std::string_view kSource = "the file behind @";
    const File file(path);
    if (file.fd() == -1) {
        return CannotRead(kSource, errno);
    }
    Secret secret = ReadLine(file.fd(), kSource);
    if (secret.problem.empty() && HasMore(file.fd())) {
        return Problem(kSource, "has more than one line; give the value as the only one");
    }
    return secret;
}

}  // namespace

Secret ReadSecret(const std::string& word) {
    if (word == "-") {
        return ReadLine(STDIN_FILENO, "standard input");
    }
    if (word.starts_with('@')) {
        return ReadFile(word.c_str() + 1);
    }
    return {word, {}};
}

}  // namespace velkctl
