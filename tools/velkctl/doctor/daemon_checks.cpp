// daemon_checks.cpp - whether the wireless daemon answers.
#include <cerrno>
#include <string>

#include <sys/stat.h>

#include "velk.h"
#include "velkctl/device.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/query_places.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

constexpr int kSeconds = 5;
constexpr char kSubject[] = "the wireless daemon";
constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";

bool IsAdapterAttached() {
    const FileState list = ReadTextFile(kSupportList).state;
    const bool is_readable = list == FileState::kText || list == FileState::kMissing;
    return is_readable && IsWlanAttached() != 0;  // opening a FIFO would wait
}

Finding Silent(Severity severity, std::string effect, std::string what, std::string remedy) {
    return {severity,       kSubject, std::move(effect), std::move(what),
            kRequestSocket, 0,        std::move(remedy)};
}

}  // namespace

Findings CheckDaemon(Report& report) {
    if (!IsAdapterAttached()) {
        return {};
    }
    struct stat facts {};
    const bool is_there = lstat(kRequestSocket, &facts) == 0;
    if (!is_there || !S_ISSOCK(facts.st_mode) || !IsBound(kRequestSocket)) {
        return {Silent(Severity::kProblem, "does not run",
                       is_there ? "nobody listens at its socket" : "its socket is missing",
                       "start the wireless daemon")};
    }
    if (IsBound(kReplySocket)) {
        return {Silent(Severity::kWarning, "was not asked",
                       "another program waits for its answer now", "try again in a minute")};
    }
    if (lstat(kSemaphore, &facts) == 0 && !IsSemaphore(facts)) {
        return {};  // asking would end this program; told as a file that is in the way
    }
    const Device device(Patience{.timeout_seconds = kSeconds}, report);
    const Answer answer =
        device.Execute({VELK_GET, VELK_CMD_SSID, VELK_WIRELESS_INTERFACE}, {}, kSubject);
    if (answer.timed_out) {
        return {Silent(Severity::kProblem, "does not answer",
                       "nothing came within " + std::to_string(kSeconds) + " seconds",
                       "restart the wireless daemon")};
    }
    if (!answer.ok()) {
        return {Silent(Severity::kProblem, "does not answer as it should", WhyNot(answer),
                       "restart the wireless daemon")};
    }
    return {};
}

}  // namespace velkctl
