// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_log.h - the file or shell line of each call of a request; the recorder lacks it.
#ifndef TESTS_FAULT_KIT_CALL_LOG_H_
#define TESTS_FAULT_KIT_CALL_LOG_H_

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/libc_recorder.h"

namespace fault {

struct LoggedCall {
    std::string file;      // the file that the call opens or uses
    std::string line;      // the shell line it runs, or that wrote the result file it reads
    int number = 0;        // as in testkit::Event
    bool is_first = true;  // the first read of an open file, or the first close since its last open
    // The part of the file read so far, for a read in the middle of a file.
    std::optional<std::string> read_before;
};

// Takes every call, in front of it, from LibcRecorder::OnEveryCall().
class CallLog {
  public:
    void Note(const testkit::Event& event);

    const std::vector<LoggedCall>& Calls(testkit::Call call) const;

  private:
    LoggedCall Describe(const testkit::Event& event);
    std::string FileOf(int fd) const;

    std::map<testkit::Call, std::vector<LoggedCall>> calls_;
    std::map<int, std::string> open_files_;
    std::set<std::string> closed_;
    std::string opened_last_;
    std::string printing_line_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_CALL_LOG_H_
