// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Many processes at once: the lock has one holder at a time, and no confirmed change is lost.
#include <atomic>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/concurrency.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::LibcRecorder;

constexpr int kProcesses = 32;

struct Meeting {
    Board board;
    std::atomic<bool> started;
    std::atomic<int> waited;  // a refused caller that did more than ask for the lock
};

class SharedMeeting {
  public:
    SharedMeeting()
        : meeting_(static_cast<Meeting*>(mmap(nullptr, sizeof(Meeting), PROT_READ | PROT_WRITE,
                                              MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        new (meeting_) Meeting{};
    }
    ~SharedMeeting() { munmap(meeting_, sizeof(Meeting)); }
    SharedMeeting(const SharedMeeting&) = delete;
    SharedMeeting& operator=(const SharedMeeting&) = delete;
    Meeting* operator->() { return meeting_; }
    Meeting& operator*() { return *meeting_; }

  private:
    Meeting* const meeting_;
};

// A refused caller has opened and asked for the lock, and nothing else.
bool WasRefusedAtOnce(LibcRecorder& libc) {
    for (const Call call : {Call::kSystem, Call::kSleep, Call::kNanosleep, Call::kSelect}) {
        if (!libc.Events(call).empty()) {
            return false;
        }
    }
    return libc.Events(Call::kFlock).size() == 1;
}

void Hammer(Meeting& meeting, int process) {
    while (!meeting.started) {
        usleep(100);
    }
    LibcRecorder& libc = LibcRecorder::Get();
    for (int round = 0; round < kRounds; ++round) {
        const size_t setting = static_cast<size_t>(round) % 2;
        const std::string value = std::to_string(process) + "." + std::to_string(round);
        libc.ForgetEvents();
        while (StoreOne(meeting.board, setting, value) == LIB_VELK_LOCKED) {
            meeting.waited += WasRefusedAtOnce(libc) ? 0 : 1;
            ReadOne(meeting.board, setting);
            libc.ForgetEvents();
        }
    }
}

TEST_F(ConcurrencyTest, ManyProcessesLoseNoUpdateOfOneFile) {
    SharedMeeting meeting;
    MeetAt(meeting->board);
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        const pid_t child = fork();
        if (child == 0) {
            Hammer(*meeting, process + 1);
            _exit(0);
        }
        children.push_back(child);
    }
    meeting->started = true;
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    ExpectNothingLost(meeting->board, kProcesses);
    EXPECT_EQ(meeting->waited, 0);
}

}  // namespace
}  // namespace fault
