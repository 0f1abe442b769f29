// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_log.cpp - the file or shell line of each call of a request.
#include "fault/kit/call_log.h"

#include <climits>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::kResultFile;

std::map<int, std::string> OpenFiles() {
    std::map<int, std::string> files;
    for (const int fd : testkit::OpenDescriptors()) {
        char path[PATH_MAX];
        const ssize_t size =
            readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path, sizeof(path));
        files[fd] = std::string(path, size > 0 ? static_cast<size_t>(size) : 0);
    }
    return files;
}

bool HasFile(Call call) {
    return call == Call::kRead || call == Call::kClose || call == Call::kFchmod ||
           call == Call::kFlock;
}

void DescribeRead(int fd, LoggedCall& call) {
    const off_t read = lseek(fd, 0, SEEK_CUR);
    call.is_first = read == 0;
    struct stat facts {};
    if (read > 0 && fstat(fd, &facts) == 0 && read < facts.st_size) {
        call.read_before = testkit::ReadFile(call.file).substr(0, static_cast<size_t>(read));
    }
}

}  // namespace

void CallLog::Note(const testkit::Event& event) {
    calls_[event.call].push_back(Describe(event));
    open_files_ = OpenFiles();
    if (event.call == Call::kOpen) {
        opened_last_ = event.text;
    } else if (event.call == Call::kSocket) {
        opened_last_ = "socket";
    }
    if (event.call == Call::kSystem && event.text.ends_with(std::string("> ") + kResultFile)) {
        printing_line_ = event.text;
    }
}

const std::vector<LoggedCall>& CallLog::Calls(Call call) const {
    static const std::vector<LoggedCall> none;
    const auto found = calls_.find(call);
    return found == calls_.end() ? none : found->second;
}

LoggedCall CallLog::Describe(const testkit::Event& event) {
    LoggedCall call;
    call.number = event.number;
    if (event.call == Call::kSystem) {
        call.line = event.text;
        return call;
    }
    if (event.call == Call::kOpen) {
        call.file = event.text;
        closed_.erase(call.file);
    } else if (HasFile(event.call)) {
        call.file = FileOf(std::stoi(event.text));
    }
    if (event.call == Call::kClose) {
        call.is_first = closed_.insert(call.file).second;
    }
    if (call.file == kResultFile) {
        call.line = printing_line_;
    }
    if (event.call == Call::kRead) {
        DescribeRead(std::stoi(event.text), call);
    }
    return call;
}

// Returns the file that was open before the previous call, or that it opened: a close has already
// happened.
std::string CallLog::FileOf(int fd) const {
    const auto found = open_files_.find(fd);
    return found == open_files_.end() ? opened_last_ : found->second;
}

}  // namespace fault
