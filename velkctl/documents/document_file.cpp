// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// document_file.cpp - reads the text of a document from a file or from standard input.
#include "velkctl/documents/document_file.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/report/report.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

struct FileText {
    std::string bytes{};
    std::string problem{};
};

// Reads to the end, but not more than one byte beyond the longest document.
FileText ReadToEnd(int fd) {
    FileText text;
    text.bytes.resize(kLongestDocument + 1);
    size_t length = 0;
    ssize_t count = 1;
    while (count > 0 && length < text.bytes.size()) {
        count = velk::ReadSome(fd, &text.bytes[length], text.bytes.size() - length);
        length += count > 0 ? static_cast<size_t>(count) : 0;
    }
    text.problem = count < 0 ? strerror(errno) : "";
    text.bytes.resize(length);
    return text;
}

FileText ReadFile(const std::string& path) {
    const velk::UniqueFd fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return fd.get() < 0 ? FileText{{}, strerror(errno)} : ReadToEnd(fd.get());
}

SettingsDocument Unreadable(const std::string& name, const std::string& reason) {
    Problem problem{Printable(name) + ": cannot be read"};
    problem.detail = reason;
    problem.remedy = "give a document that 'velkctl export' has printed, or - for standard input";
    problem.file = name;
    return {.name = name, .problems = {problem}};
}

}  // namespace

SettingsDocument ReadDocumentFile(const std::string& word) {
    const bool is_input = word == "-";
    const std::string name = is_input ? "standard input" : word;
    const FileText text = is_input ? ReadToEnd(STDIN_FILENO) : ReadFile(word);
    if (!text.problem.empty()) {
        return Unreadable(name, text.problem);
    }
    if (text.bytes.size() > kLongestDocument) {
        return Unreadable(name, "it is longer than 64 KiB");
    }
    return ReadDocument(text.bytes, name);
}

}  // namespace velkctl
