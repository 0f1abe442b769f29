// daemon_checks.cpp - whether the wireless daemon answers.
#include <string>
#include <utility>

#include <sys/stat.h>

#include "lib/base/paths.h"
#include "velk.h"
#include "velkctl/call/device.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/unix_socket.h"

namespace velkctl {
namespace {

constexpr int kSeconds = 5;
constexpr int kFirstChannel = 1;
constexpr int kLastChannel = 13;

// Opening a FIFO would wait. What is wrong with the lists is told as of other files.
bool CanLookForAdapter() {
    const FileState list = ReadTextFile(velk::kSupportList).state;
    const bool is_readable = list == FileState::kText || list == FileState::kMissing;
    return is_readable && ReadTextFile(velk::kUsbDevices).state == FileState::kText;
}

bool IsAdapterAttached() {
    return CanLookForAdapter() && IsWlanAttached() != 0;
}

// What every finding has in common.
Finding About(std::string effect) {
    return {.subject = "the wireless daemon",
            .effect = std::move(effect),
            .file = velk::kRequestSocket,
            .remedy = "restart the wireless daemon",
            .concerns = WirelessSettings(),
            .hinders = Hinders::kSetting};
}

bool Listens(const struct stat& socket) {
    return S_ISSOCK(socket.st_mode) && IsBound(velk::kRequestSocket);
}

// Without an adapter it may well be that nobody wants the daemon, and its configuration is all that
// is missed.
Findings FindAbsence() {
    struct stat socket {};
    const bool is_there = lstat(velk::kRequestSocket, &socket) == 0;
    if (is_there && Listens(socket)) {
        return {};
    }
    Finding finding = About("does not run");
    finding.what = is_there ? "nobody listens at its socket" : "its socket is missing";
    finding.remedy = "start the wireless daemon";
    if (!IsAdapterAttached()) {
        finding.severity = Severity::kWarning;
        finding.what.append(", and no adapter is attached");
        finding.remedy = "plug an adapter in, and start the wireless daemon unless that does";
        finding.concerns = WirelessConfiguration();
    }
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
        finding.what = FailureReason(answer);
        return {finding};
    }
    return {};
}

// A record without a channel, as an empty answer makes one, is no configuration.
Findings JudgeChannel(const Answer& answer) {
    const auto channel = static_cast<unsigned char>(answer.data[0]);
    if (!answer.ok() || (channel >= kFirstChannel && channel <= kLastChannel)) {
        return JudgeAnswer(answer);
    }
    Finding finding = About("may not answer with its configuration");
    finding.severity = Severity::kWarning;
    finding.what = "its record has the channel " + std::to_string(channel) + ", which is none";
    finding.remedy = "set eth1.channel, or restart the wireless daemon";
    finding.hinders = Hinders::kNothing;
    return {finding};
}

Findings AskDaemon(Report& report) {
    const Device device(TimeLimits{.timeout_seconds = kSeconds}, report);
    const auto ask = [&](uint32_t id, const std::string& name) {
        return device.Execute({VELK_GET, id, VELK_WIRELESS_INTERFACE}, {}, name);
    };
    Findings findings = JudgeAnswer(ask(VELK_CMD_SSID, "eth1.ssid"));
    return findings.empty() ? JudgeChannel(ask(VELK_CMD_CHANNEL, "eth1.channel")) : findings;
}

}  // namespace

Findings CheckAdapter() {
    if (!CanLookForAdapter() || IsAdapterAttached()) {
        return {};
    }
    return {{.severity = Severity::kWarning,
             .subject = "wireless adapter",
             .effect = "is not attached",
             .what = "the list has none that is supported; what eth1 tells of adapter and "
                     "connection is refused",
             .file = velk::kUsbDevices,
             .remedy = std::string("plug in one that ") + velk::kSupportList + " names",
             .concerns = AdapterFacts(),
             .hinders = Hinders::kReading}};
}

Findings CheckDaemon(Report& report) {
    if (Findings absence = FindAbsence(); !absence.empty()) {
        return absence;
    }
    if (IsBound(velk::kReplySocket)) {
        return Busy();
    }
    if (CountOf(CheckQueryRemains(), Severity::kProblem) > 0) {
        return {};  // what is in the way is told already, and is to blame for any answer
    }
    return AskDaemon(report);
}

Findings CheckDaemonRuns(const Setting& setting) {
    return Includes(WirelessSettings(), setting) ? FindAbsence() : Findings();
}

Findings DaemonBehind(const Setting& setting) {
    if (!Includes(WirelessConfiguration(), setting)) {
        return {};
    }
    Finding finding = About("keeps another configuration");
    finding.what = "the wireless daemon was sent the value, and answers otherwise";
    finding.remedy = "'velkctl doctor' asks it; restart the wireless daemon";
    return {finding};
}

}  // namespace velkctl
