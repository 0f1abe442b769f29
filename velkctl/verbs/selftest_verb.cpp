// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// selftest_verb.cpp - the verb that tries every command without changing the device.
#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/file_image.h"
#include "velkctl/files/image_root.h"
#include "velkctl/preview/copy_plan.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/columns.h"
#include "velkctl/verbs/command_tests.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

using Tests = std::vector<CommandTest>;

constexpr size_t kVerdictWidth = 14;
// The limit of each command unless --timeout gives one, in seconds: the check of an image must end.
// A command to a silent wireless daemon takes 165.
constexpr int kLongestCommand = 600;

std::string_view WordOf(Verdict verdict) {
    if (verdict == Verdict::kWorks) {
        return "works";
    }
    return verdict == Verdict::kFails ? "fails" : "not tested";
}

size_t CountOf(const Tests& tests, Verdict verdict) {
    return static_cast<size_t>(std::ranges::count(tests, verdict, &CommandTest::verdict));
}

// Returns the line of a setting: "eth0.dns  get works     set works".
std::string RowOf(const Tests& tests, size_t width) {
    std::string row = NameColumn(tests.front().setting, width);
    for (const CommandTest& test : tests) {
        std::string text = test.type == VELK_GET ? "get " : "set ";
        text.append(WordOf(test.verdict));
        row.append(Padded(std::move(text), kVerdictWidth)).append("  ");
    }
    return row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
}

Json TestInJson(const CommandTest& test) {
    Json object;
    object["name"] = test.setting.name();
    object["id"] = test.setting.row->id;
    object["type"] = test.type == VELK_GET ? "get" : "set";
    object["verdict"] = WordOf(test.verdict);
    object["problem"] =
        test.verdict == Verdict::kWorks ? Json(nullptr) : ProblemInJson(test.problem);
    return object;
}

Tests TestsOf(const Setting& setting, CommandTester& tester) {
    Tests tests;
    std::optional<CommandTest> get;
    if (setting.can_get()) {
        get = tester.TestGet(setting);
        tests.push_back(*get);
    }
    if (setting.can_set()) {
        tests.push_back(tester.TestSet(setting, get));
    }
    return tests;
}

bool IsFailure(const CommandTest& test) {
    return test.verdict == Verdict::kFails || test.verdict == Verdict::kNotRun;
}

// The set of a setting often fails for the reason of its get, and all trials for the same one.
void ComplainAboutFailures(const Tests& tests, Report& report) {
    std::set<std::string> reported;
    for (const CommandTest& test : tests) {
        if (IsFailure(test) && reported.insert(test.problem.message).second) {
            report.Complain(test.problem);
        }
    }
}

std::string Summary(const Tests& tests) {
    std::string text = std::to_string(CountOf(tests, Verdict::kWorks)) + " commands work, ";
    text.append(std::to_string(CountOf(tests, Verdict::kFails))).append(" fail, ");
    const size_t untested = CountOf(tests, Verdict::kUntested) + CountOf(tests, Verdict::kNotRun);
    return text.append(std::to_string(untested)).append(" not tested\n");
}

bool IsFolder(const std::string& path) {
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

// Returns the files of an image, under the paths that they have on a device.
std::vector<FileImage> ImagesIn(const std::string& root) {
    std::vector<FileImage> images;
    for (const std::string& path : ChangeableFiles()) {
        FileImage image = ReadFileImage(PathInRoot(root, path));
        image.path = path;
        images.push_back(std::move(image));
    }
    return images;
}

}  // namespace

ExitStatus RunSelftest(const Invocation& invocation, Report& report) {
    if (invocation.root && !IsFolder(*invocation.root)) {
        return report.Refuse("selftest: " + invocation.Shown(*invocation.root) +
                             " is not a folder; give the root folder of an image");
    }
    TimeLimits limits = invocation.limits;
    if (limits.timeout_seconds == 0) {
        limits.timeout_seconds = kLongestCommand;
    }
    CommandTester tester(limits,
                         invocation.root ? ImagesIn(*invocation.root) : std::vector<FileImage>());
    const std::vector<Setting> settings = Settings();
    const size_t width = NameWidth(settings);
    Tests all;
    for (const Setting& setting : settings) {
        const Tests tests = TestsOf(setting, tester);
        report.Text(RowOf(tests, width));
        all.insert(all.end(), tests.begin(), tests.end());
    }
    Json commands = Json::array();
    std::ranges::transform(all, std::back_inserter(commands), TestInJson);
    report.Member("commands", std::move(commands));
    report.Text(Summary(all));
    ComplainAboutFailures(all, report);
    return std::ranges::any_of(all, IsFailure) ? ExitStatus::kFailed : ExitStatus::kDone;
}

}  // namespace velkctl
