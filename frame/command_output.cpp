// command_output.cpp - runs a shell line and reads what it wrote into the result file.
#include "frame/command_output.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "velk.h"

namespace velk {
namespace {

constexpr char kResultLockFile[] = "/var/tmp/get_result_lock";
constexpr mode_t kResultLockMode = 0666;  // readers of every user take the lock

// flock(2) has no time-out, so a held lock is tried again: 300 times 10 ms are 3 seconds.
constexpr int kLockTries = 300;
constexpr std::chrono::milliseconds kLockPause{10};

// Without following links and without O_CREAT first, for the reasons given at the set/restart lock.
UniqueFd OpenLockFile() {
    UniqueFd existing(open(kResultLockFile, O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (existing.get() != -1) {
        return existing;
    }
    UniqueFd created(
        open(kResultLockFile, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kResultLockMode));
    if (created.get() != -1) {
        (void)fchmod(created.get(), kResultLockMode);
    }
    return created;
}

}  // namespace

ResultFileLock::ResultFileLock() : fd_(OpenLockFile()) {
    if (fd_.get() == -1) {
        return;
    }
    for (int i = 0; i < kLockTries; ++i) {
        if (flock(fd_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            return;
        }
        std::this_thread::sleep_for(kLockPause);  // whole, also when signals arrive
    }
}

CommandOutput::CommandOutput(const CommandLine& command) : run_result_(command.Run()) {
    if (run_result_ == LIB_VELK_SUCCESS) {
        reader_.emplace(kResultFile);
    }
}

void CommandOutput::Remove() {
    reader_.reset();
    (void)CommandLine("rm %s", kResultFile).Run();
}

}  // namespace velk
