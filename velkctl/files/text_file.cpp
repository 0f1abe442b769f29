// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_file.cpp - a file of the device, read without trusting it.
#include "velkctl/files/text_file.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "lib/base/words.h"

namespace velkctl {
namespace {

constexpr size_t kLargest = 1024 * 1024;
constexpr size_t kBlockSize = 4 * 1024;
constexpr size_t kLongestExcerpt = 60;
constexpr std::string_view kSpace = " \t\n\v\f\r";

TextFile Failed(int error) {
    const bool is_missing = error == ENOENT || error == ENOTDIR;
    return {is_missing ? FileState::kMissing : FileState::kUnreadable, error};
}

bool IsRegular(const struct stat& facts) {
    return S_ISREG(facts.st_mode);
}

Lines LinesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.push_back(std::string(line).append("\n"));
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    }
    return lines;
}

// Files of the kernel have no size: the end is where read(2) returns 0.
TextFile ReadAll(int fd) {
    TextFile file{FileState::kText};
    char block[kBlockSize];
    for (;;) {
        const ssize_t count = velk::ReadSome(fd, block, sizeof(block));
        if (count == -1) {
            return Failed(errno);
        }
        if (count == 0) {
            file.lines = LinesOf(file.bytes);
            return file;
        }
        file.bytes.append(block, static_cast<size_t>(count));
        if (file.bytes.size() > kLargest) {
            return {FileState::kTooLarge};
        }
    }
}

}  // namespace

TextFile ReadTextFile(const std::string& path) {
    struct stat facts {};
    if (stat(path.c_str(), &facts) == -1) {
        return Failed(errno);
    }
    // Looked at before opening: opening a device can do something.
    if (!IsRegular(facts)) {
        return {FileState::kNotRegular};
    }
    const velk::UniqueFd fd(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (fd.get() == -1) {
        return Failed(errno);
    }
    if (fstat(fd.get(), &facts) == -1 || !IsRegular(facts)) {
        return {FileState::kNotRegular};
    }
    return ReadAll(fd.get());
}

std::vector<std::string> WordsOf(std::string_view line) {
    std::vector<std::string> words;
    for (std::string_view word = velk::TakeWord(line); !word.empty(); word = velk::TakeWord(line)) {
        words.emplace_back(word);
    }
    return words;
}

std::string_view Trimmed(std::string_view line) {
    const size_t begin = line.find_first_not_of(kSpace);
    if (begin == std::string_view::npos) {
        return {};
    }
    return line.substr(begin, line.find_last_not_of(kSpace) - begin + 1);
}

std::string_view WithoutLineEnd(std::string_view line) {
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line;
}

std::vector<size_t> LinesWith(const Lines& lines, std::string_view text) {
    return IndexesOf(lines, [text](std::string_view line) { return velk::Contains(line, text); });
}

size_t CountCarriageReturns(const Lines& lines) {
    return static_cast<size_t>(std::ranges::count_if(
        lines, [](const std::string& line) { return line.ends_with("\r\n"); }));
}

bool HasPlainLines(const TextFile& file) {
    return file.state == FileState::kText && CountCarriageReturns(file.lines) == 0;
}

bool IsComment(std::string_view line) {
    return Trimmed(line).starts_with('#');
}

std::string Excerpt(std::string_view line) {
    std::string text(Trimmed(line));
    if (text.size() > kLongestExcerpt) {
        text.resize(kLongestExcerpt);
        text.append("...");
    }
    return "'" + text + "'";
}

}  // namespace velkctl
