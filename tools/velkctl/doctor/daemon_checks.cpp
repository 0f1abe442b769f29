// daemon_checks.cpp - whether the wireless daemon answers.
#include <cerrno>
#include <string>

#include <sys/stat.h>

#include "velk.h"
#include "velkctl/device.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/places.h"
#include "velkctl/unix_socket.h"

namespace velkctl {
namespace {

constexpr int kSeconds = 5;
constexpr char kSubject[] = "the wireless daemon";

bool IsAdapterAttached() {
    const FileState list = ReadTextFile(kSupportList).state;
    const bool is_readable = list == FileState::kText || list == FileState::kMissing;
    return is_readable && IsWlanAttached() != 0;  // opening a FIFO would wait
}

// What every finding has in common.
Finding About(std::string effect) {
    return {.subject = kSubject,
            .effect = std::move(effect),
            .file = kRequestSocket,
            .remedy = "restart the wireless daemon",
            .concerns = WirelessSettings(),
            .hinders = Hinders::kSetting};
}

Findings NotRunning(bool has_socket) {
    Finding finding = About("does not run");
    finding.what = has_socket ? "nobody listens at its socket" : "its socket is missing";
    finding.remedy = "start the wireless daemon";
    return {finding};
}

Findings Busy() {
    Finding finding = About("was not asked");
    finding.severity = Severity::kWarning;
    finding.what = "another program waits for its answer now";
    finding.remedy = "try again in a minute";
    finding.hinders = Hinders::kNothing;
    return {finding};
}

// What the answer to a question tells of the daemon.
Findings JudgeAnswer(const Answer& answer) {
    if (answer.timed_out) {
        Finding finding = About("does not answer");
        finding.what = "nothing came within " + std::to_string(kSeconds) + " seconds";
        return {finding};
    }
    if (StatusOf(answer) != ExitStatus::kDone) {
        Finding finding = About("does not answer as it should");
        finding.what = WhyNot(answer);
        return {finding};
    }
    return {};
}

}  // namespace

Findings CheckDaemon(Report& report) {
    if (!IsAdapterAttached()) {
        return {};
    }
    struct stat facts {};
    const bool is_there = lstat(kRequestSocket, &facts) == 0;
    if (!is_there || !S_ISSOCK(facts.st_mode) || !IsBound(kRequestSocket)) {
        return NotRunning(is_there);
    }
    if (IsBound(kReplySocket)) {
        return Busy();
    }
    if (CountOf(CheckQueryRemains(), Severity::kProblem) > 0) {
        return {};  // what is in the way is told already, and is to blame for any answer
    }
    const Device device(Patience{.timeout_seconds = kSeconds}, report);
    return JudgeAnswer(
        device.Execute({VELK_GET, VELK_CMD_SSID, VELK_WIRELESS_INTERFACE}, {}, kSubject));
}

}  // namespace velkctl
