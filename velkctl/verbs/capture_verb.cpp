// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// capture_verb.cpp - the verb that writes all that the library reads on a device to a file.
#include <algorithm>
#include <cstring>
#include <ctime>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/capture/blanked_text.h"
#include "velkctl/capture/capture.h"
#include "velkctl/capture/captured_paths.h"
#include "velkctl/capture/device_state.h"
#include "velkctl/capture/wireless_record.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/files/replaced_file.h"
#include "velkctl/files/unix_socket.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_reader.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::string_view kStandardOutput = "-";
constexpr mode_t kArchiveMode = 0600;

// The values of all settings, as the library reads them.
class ReadValues {
  public:
    ReadValues(const Invocation& invocation, Report& report)
        : device_(invocation.limits, report), reader_(device_) {
        for (const Setting& setting : Settings()) {
            if (setting.can_get()) {
                Read(setting);
            }
        }
    }

    const WirelessValues& wireless() const { return wireless_; }
    std::string Text() const { return DocumentText(readings_); }

  private:
    void Read(const Setting& setting) {
        const std::optional<Answer> answer = reader_.Read(setting);
        if (!answer || !answer->ok()) {
            const Problem problem = ReadingProblem(setting, answer);
            readings_.push_back(ReadingInJson(setting, nullptr, ProblemInJson(problem)));
            return;
        }
        readings_.push_back(
            ReadingInJson(setting, ValueInJson(setting, answer->data, /*show_secrets=*/false),
                          nullptr, !InvalidValue(setting, answer->data)));
        if (setting.row->held_in.holder == Holder::kDaemon) {
            wireless_[setting.row->id] = answer->data;
        }
    }

    const Device device_;
    SettingReader reader_;
    WirelessValues wireless_;
    Json readings_ = Json::array();
};

std::string DaemonLine(bool is_running, const std::string& record) {
    if (!is_running) {
        return "daemon missing\n";
    }
    return record.empty() ? "daemon silent\n" : "daemon answers\n";
}

// The files are read first: reading settings removes some of them.
std::string MakeCapture(const Invocation& invocation, Report& report, Capture& capture) {
    AddDeviceFiles(capture);
    std::string state = AddDeviceState(capture);
    const bool is_running = IsBound(velk::kRequestSocket);
    const ReadValues values(invocation, report);
    const std::string record = WirelessRecord(values.wireless());
    const std::vector<std::string> keys = KeysOf(values.wireless());
    capture.AddBlanked("device.txt", state.append(DaemonLine(is_running, record)));
    capture.AddBlanked("values.json", BlankedBytes(values.Text(), keys));
    if (!record.empty()) {
        capture.AddBlanked("wireless.bin", record);
    }
    return capture.Finish(VELKCTL_VERSION, keys);
}

void AddItems(const Capture& capture, Report& report) {
    Json items = Json::array();
    std::ranges::transform(capture.items(), std::back_inserter(items), ItemInJson);
    report.Member("items", std::move(items));
    for (const CaptureItem& item : capture.items()) {
        if (!item.problem.empty()) {
            report.Note(
                Problem{.message = item.name + ": could not be captured", .detail = item.problem});
        }
    }
}

std::string Summary(const Capture& capture, const std::string& file) {
    const auto count = std::ranges::count_if(capture.items(),
                                             [](const auto& item) { return !item.member.empty(); });
    return "captured " + std::to_string(count) + " items in " + file + "\n";
}

std::optional<std::string> UsageProblem(const Invocation& invocation) {
    const std::string& file = invocation.words.front();
    if (file == kStandardOutput && invocation.json) {
        return "capture: --json needs a FILE; standard output would have two documents";
    }
    if (file == kStandardOutput && isatty(STDOUT_FILENO) == 1) {
        return "capture: an archive is no text for a terminal; give a FILE";
    }
    if (!IsReplaceable(file)) {
        return "capture: " + invocation.Shown(file) + " is no file; give the name of a file";
    }
    return std::nullopt;
}

}  // namespace

ExitStatus RunCapture(const Invocation& invocation, Report& report) {
    if (const std::optional<std::string> problem = UsageProblem(invocation)) {
        return report.Refuse(*problem);
    }
    const std::string& file = invocation.words.front();
    Capture capture(time(nullptr));
    const std::string archive = MakeCapture(invocation, report, capture);
    AddItems(capture, report);
    if (file == kStandardOutput) {
        report.Text(archive);
    } else if (const int error = ReplaceFile(file, archive, kArchiveMode); error != 0) {
        report.Complain(Problem{.message = file + ": could not be written",
                                .detail = strerror(error),
                                .remedy = "give a FILE in a folder that this user may write"});
        return ExitStatus::kFailed;
    } else {
        report.Inform(Summary(capture, invocation.Shown(file)));
    }
    return ExitStatus::kDone;
}

}  // namespace velkctl
