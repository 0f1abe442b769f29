// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// daemon_checks.cpp - whether the wireless daemon answers.
#include <string>

#include <sys/stat.h>

#include "lib/base/paths.h"
#include "velk/wlan.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

constexpr int kFirstChannel = 1;
constexpr int kLastChannel = 13;

// Opening a FIFO would wait. CheckFiles() finds a list that cannot be read.
bool CanLookForAdapter() {
    const FileState list = ReadTextFile(velk::kSupportList).state;
    const bool is_readable = list == FileState::kText || list == FileState::kMissing;
    return is_readable && ReadTextFile(velk::kUsbDevices).state == FileState::kText;
}

bool IsAdapterAttached() {
    return CanLookForAdapter() && IsWlanAttached() != 0;
}

Finding AboutDaemon(AffectedSettings affected = WirelessSettings()) {
    return {.subject = "the wireless daemon",
            .file = velk::kRequestSocket,
            .remedy = "restart the wireless daemon",
            .affected = std::move(affected),
            .impact = Impact::kBoth};
}

// Returns the kind of file in the place of the daemon's socket; 0 if none.
mode_t KindOfSocket() {
    struct stat facts {};
    return lstat(velk::kRequestSocket, &facts) == 0 ? facts.st_mode & S_IFMT : 0;
}

bool IsListening() {
    return KindOfSocket() == S_IFSOCK && IsBound(velk::kRequestSocket);
}

// Without an adapter the device may need no daemon; then only its configuration is affected.
Findings CheckListener() {
    if (IsListening()) {
        return {};
    }
    const std::string description =
        KindOfSocket() == 0 ? "its socket is missing" : "no process listens at its socket";
    return {IsAdapterAttached()
                ? AboutDaemon().Problem("does not run", description, "start the wireless daemon")
                : AboutDaemon(WirelessConfiguration())
                      .Warning("does not run", description + "; no adapter is attached",
                               "plug in an adapter; if that does not start the wireless daemon, "
                               "start it")};
}

Findings CheckAnswer(const Answer& answer) {
    if (answer.timed_out) {
        return {AboutDaemon().Problem(
            "does not answer", "nothing came within " + std::to_string(kLongestGet) + " seconds")};
    }
    if (StatusOf(answer) != ExitStatus::kDone) {
        return {AboutDaemon().Problem("answers with an error", FailureReason(answer))};
    }
    return {};
}

// The record of an empty answer has no channel. It is not a configuration.
Findings CheckChannel(const Answer& answer) {
    const auto channel = static_cast<unsigned char>(answer.data[0]);
    if (!answer.ok() || (channel >= kFirstChannel && channel <= kLastChannel)) {
        return CheckAnswer(answer);
    }
    return {
        AboutDaemon()
            .With(Impact::kNothing)
            .Warning("may not answer with its configuration",
                     "its record has channel " + std::to_string(channel) + ", which is not valid",
                     "set eth1.channel, or restart the wireless daemon")};
}

Findings AskDaemon(Report& report) {
    const Device device(TimeLimits{.timeout_seconds = kLongestGet}, report);
    const auto ask = [&](uint32_t id) {
        return device.Get(SettingOf(id, VELK_WIRELESS_INTERFACE));
    };
    Findings findings = CheckAnswer(ask(VELK_CMD_SSID));
    return findings.empty() ? CheckChannel(ask(VELK_CMD_CHANNEL)) : findings;
}

}  // namespace

Findings CheckAdapter() {
    if (!CanLookForAdapter() || IsAdapterAttached()) {
        return {};
    }
    const Finding about{.subject = "wireless adapter",
                        .file = velk::kUsbDevices,
                        .affected = AdapterFacts(),
                        .impact = Impact::kReading};
    return {about.Warning("is not attached",
                          "the list has no supported adapter; the settings of eth1 about adapter "
                          "and connection are refused",
                          std::string("plug in one that ") + velk::kSupportList + " names")};
}

bool DaemonLacksAdapter() {
    return !IsListening() && CanLookForAdapter() && !IsAdapterAttached();
}

Findings CheckDaemon(Report& report) {
    if (Findings absence = CheckListener(); !absence.empty()) {
        return absence;
    }
    if (IsBound(velk::kReplySocket)) {
        return {AboutDaemon()
                    .With(Impact::kNothing)
                    .Warning("was not asked", "another program waits for its answer now",
                             "try again in a minute")};
    }
    // Remains that hinder a query are found already, and spoil any answer.
    return CountOf(CheckQueryRemains(), Severity::kProblem) > 0 ? Findings() : AskDaemon(report);
}

Findings CheckDaemonRuns(const Setting& setting) {
    return Includes(WirelessSettings(), setting) ? CheckListener() : Findings();
}

Findings DaemonDiffers(const Setting& setting) {
    if (!Includes(WirelessConfiguration(), setting)) {
        return {};
    }
    return {
        AboutDaemon().Problem("keeps another configuration",
                              "the wireless daemon was sent the value, but returns another one",
                              "set it again; if it differs again, restart the wireless daemon")};
}

}  // namespace velkctl
