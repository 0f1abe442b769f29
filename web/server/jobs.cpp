// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// jobs.cpp - changes that run on when the browser's connection is lost.
//
// The folder of a job has these files:
//   facts   its user and the second of its begin
//   lock    locked by the process of the job while it runs
//   output  the output of velkctl so far
//   answer  the same when it has ended
#include "web/server/jobs.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "web/server/run_folder.h"

namespace velkweb {
namespace {

constexpr size_t kIdBytes = 16;
constexpr size_t kLargestFacts = 256;

std::string FileOf(const std::string& id, std::string_view name) {
    return RunPath("jobs/" + id + "/").append(name);
}

struct Facts {
    std::string user;
    int64_t began = 0;
};

std::optional<Facts> FactsOf(const std::string& id) {
    const std::optional<std::string> text = ReadFileText(FileOf(id, "facts"), kLargestFacts);
    const size_t blank = text ? text->find(' ') : std::string::npos;
    if (blank == std::string::npos) {
        return std::nullopt;
    }
    Facts facts{.user = text->substr(0, blank)};
    const char* number = text->data() + blank + 1;
    const auto parsed = std::from_chars(number, text->data() + text->size(), facts.began);
    return parsed.ec == std::errc() ? std::optional(facts) : std::nullopt;
}

bool IsRunning(const std::string& id) {
    const velk::UniqueFd fd(open(FileOf(id, "lock").c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    return fd.get() >= 0 && flock(fd.get(), LOCK_SH | LOCK_NB) != 0;
}

// The end of a job is the time of its last file.
time_t EndOf(const std::string& id) {
    struct stat facts {};
    return stat(RunPath("jobs/" + id).c_str(), &facts) == 0 ? facts.st_mtime : 0;
}

// The clock of the files can be set meanwhile: a job from the future has ended long ago, too.
bool IsOld(const std::string& id) {
    return std::abs(time(nullptr) - EndOf(id)) > kKeptSeconds;
}

void RemoveJob(const std::string& id) {
    std::error_code problem;
    std::filesystem::remove_all(RunPath("jobs/" + id), problem);
}

// Removes jobs that have ended long ago, and of the others those that ended first, so that one more
// can be kept. Returns the number of jobs that run.
size_t SweepJobs() {
    size_t running = 0;
    std::vector<std::pair<time_t, std::string>> ended;
    for (const std::string& id : NamesIn(RunPath("jobs"))) {
        if (IsRunning(id)) {
            ++running;
        } else if (IsOld(id)) {
            RemoveJob(id);
        } else {
            ended.emplace_back(EndOf(id), id);
        }
    }
    std::ranges::sort(ended);
    for (size_t i = 0; i < ended.size() && running + ended.size() - i >= kMostJobs; ++i) {
        RemoveJob(ended[i].second);
    }
    return running;
}

// Runs velkctl and keeps its output. The document appears in one step, as "answer".
void RunJob(const std::string& id, const VelkctlRun& run) {
    const velk::UniqueFd turn(AsksDaemon(run) ? AwaitLock(DaemonLockPath()) : velk::UniqueFd());
    velk::UniqueFd output(open(FileOf(id, "output").c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    const pid_t child = output.get() < 0 ? 0 : StartVelkctl(run, output.get());
    if (child == 0) {
        return;
    }
    while (waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
    (void)rename(FileOf(id, "output").c_str(), FileOf(id, "answer").c_str());
}

// Closes all descriptors but the lock: the web server waits until nobody has its pipe any more.
bool LeaveConnection(int lock) {
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere < 0 || setsid() < 0) {
        return false;
    }
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        (void)dup2(nowhere, fd);
    }
    constexpr int kFirst = STDERR_FILENO + 1;
    if (dup2(lock, kFirst) < 0 || fcntl(kFirst, F_SETFD, FD_CLOEXEC) != 0) {
        return false;
    }
    return close_range(kFirst + 1, ~0U, 0) == 0;
}

// The process of a job. It is no child of the web server's: its parent ends at once.
[[noreturn]] void BecomeJob(const std::string& id, const VelkctlRun& run, int lock) {
    if (fork() != 0) {
        _exit(0);
    }
    for (const int signal_number : {SIGHUP, SIGINT, SIGTERM, SIGPIPE}) {
        (void)signal(signal_number, SIG_IGN);
    }
    if (LeaveConnection(lock)) {
        RunJob(id, run);
    }
    _exit(0);
}

bool MakeJob(const std::string& id, const std::string& user) {
    return mkdir(RunPath("jobs/" + id).c_str(), 0700) == 0 &&
           ReplaceFile(FileOf(id, "facts"), user + " " + std::to_string(SecondsSinceBoot()));
}

Answer Busy() {
    Answer answer = ErrorAnswer(503, {.message = "several changes run already",
                                      .remedy = "wait for their end, then try again"});
    answer.headers.emplace_back("Retry-After: 5");
    return answer;
}

// Without the file, the job waits for its turn.
std::string Progress(const std::string& id) {
    const bool has_begun = access(FileOf(id, "output").c_str(), F_OK) == 0;
    return has_begun ? "velkctl is at work" : "waiting for the end of another request";
}

Json DocumentOf(const std::string& id) {
    const std::optional<std::string> text = ReadFileText(FileOf(id, "answer"), kLongestDocument);
    if (text && IsDocument(*text)) {
        return Json::parse(*text);
    }
    return ErrorDocument({.message = "the change has ended without an answer",
                          .detail = "its state is unknown",
                          .remedy = "look at the history and the findings of the doctor"});
}

}  // namespace

Answer BeginJob(const std::string& user, const VelkctlRun& run) {
    const velk::UniqueFd sweep = AwaitLock(RunPath("jobs.lock"));
    if (SweepJobs() >= kMostRunningJobs) {
        return Busy();
    }
    const std::string id = RandomHex(kIdBytes);
    const velk::UniqueFd lock(MakeJob(id, user) ? TryLock(FileOf(id, "lock")) : velk::UniqueFd());
    const pid_t child = lock.get() < 0 ? -1 : fork();
    if (child == -1) {
        RemoveJob(id);
        return ErrorAnswer(500, {.message = "the change could not be begun",
                                 .remedy = "try again; restart the device if this remains"});
    }
    if (child == 0) {
        BecomeJob(id, run, lock.get());
    }
    (void)waitpid(child, nullptr, 0);
    Json document;
    document["job"] = id;
    return JsonAnswer(document, 202);
}

Answer JobAnswer(const std::string& user, const std::string& id) {
    const std::optional<Facts> facts = IsHex(id, kIdBytes * 2) ? FactsOf(id) : std::nullopt;
    if (!facts || facts->user != user) {
        return ErrorAnswer(404, {.message = "there is no such job",
                                 .remedy = "look at the history: jobs are kept for ten minutes"});
    }
    const bool is_done = !IsRunning(id);
    Json document;
    document["job"] = id;
    document["done"] = is_done;
    if (is_done) {
        document["answer"] = DocumentOf(id);
    } else {
        document["seconds"] = SecondsSinceBoot() - facts->began;
        document["progress"] = Json::array({Progress(id)});
    }
    return JsonAnswer(document);
}

}  // namespace velkweb
