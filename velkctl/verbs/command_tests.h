// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_tests.h - tries the commands of settings without changing the device.
#ifndef VELKCTL_VERBS_COMMAND_TESTS_H_
#define VELKCTL_VERBS_COMMAND_TESTS_H_

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velk/request.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/files/file_image.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

enum class Verdict {
    kWorks,
    kFails,
    kUntested,  // the reason is the state of the device: no adapter, or the cable is in; or an
                // image does not hold the setting
    kNotRun,    // no private copy is possible here
};

// The test of a get or set of a setting.
struct CommandTest {
    Setting setting;
    velk_command_type type;
    Verdict verdict = Verdict::kWorks;
    Problem problem{};    // if it does not work
    std::string value{};  // the text of the value that was read
};

// Runs the commands in private copies of the device's files, so that no get waits for the link.
class CommandTester {
  public:
    // With images the copies begin with these files, and only settings in files are tested. A file
    // that an image lacks is among them, too.
    explicit CommandTester(const TimeLimits& limits, std::vector<FileImage> images = {})
        : limits_(limits), images_(std::move(images)) {}

    // Reads the setting. After one time-out of the wireless daemon its other settings are skipped.
    CommandTest TestGet(const Setting& setting);

    // Sets the setting to another value, and reads it back. `get` is the test of reading it;
    // nothing if it cannot be read.
    CommandTest TestSet(const Setting& setting, const std::optional<CommandTest>& get) const;

  private:
    CommandTest TestValue(const SettingChange& change) const;
    CommandTest TestEachValue(const Setting& setting) const;
    Problem ProblemWith(const Setting& setting, const std::string& message,
                        const Answer& answer) const;
    Problem NotHeld(const SettingChange& change, const Answer& answer) const;
    std::optional<CommandTest> Untested(const Setting& setting, velk_command_type type) const;

    const TimeLimits limits_;
    const std::vector<FileImage> images_;
    bool daemon_is_silent_ = false;
};

}  // namespace velkctl

#endif  // VELKCTL_VERBS_COMMAND_TESTS_H_
