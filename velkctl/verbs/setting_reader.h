// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_reader.h - reads settings one after the other, without waiting for a silent daemon twice.
#ifndef VELKCTL_VERBS_SETTING_READER_H_
#define VELKCTL_VERBS_SETTING_READER_H_

#include <chrono>
#include <optional>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// A wireless daemon without an answer for this time is not queried again.
inline constexpr std::chrono::seconds kSilence{10};

// After one time-out of the wireless daemon its other settings are skipped.
class SettingReader {
  public:
    explicit SettingReader(const Device& device) : device_(device) {}

    // Returns the answer; nothing if the setting was skipped.
    std::optional<Answer> Read(const Setting& setting);

  private:
    const Device& device_;
    bool daemon_is_silent_ = false;
};

// Returns the problem of a setting that was not read: of the failed answer, or of the skipping.
Problem ReadingProblem(const Setting& setting, const std::optional<Answer>& answer);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SETTING_READER_H_
