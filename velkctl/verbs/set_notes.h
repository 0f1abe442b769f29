// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_notes.h - notes about the effects of a set on other settings and on the device.
#ifndef VELKCTL_VERBS_SET_NOTES_H_
#define VELKCTL_VERBS_SET_NOTES_H_

#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// A setting with its printed value.
struct PrintedSetting {
    Setting setting;
    std::string value;
};

// Reads the other settings before a set, and compares them with those after it. The device must
// outlive it.
class SetNotes {
  public:
    // `settings` are those of the call. Without `compares`, no addresses are compared.
    SetNotes(const std::vector<Setting>& settings, const Device& device, bool compares);

    // Notes, after the set of `done`: other settings that it switched, addresses that do not fit
    // each other since then, a value that the next change of another setting undoes and, at a
    // terminal, when the set takes effect. `done` has the settings of the call that were set.
    void Print(const std::vector<Setting>& done, Report& report) const;
    // The same without the time of the effect, for a change that includes the restarts.
    void PrintResults(const std::vector<Setting>& done, Report& report) const;

  private:
    void PrintSwitched(const std::vector<Setting>& done, Report& report) const;
    void PrintMismatches(const std::vector<Setting>& done, Report& report) const;

    const Device& device_;
    const bool compares_;
    const std::vector<PrintedSetting> beside_;  // all that the call may switch
    const Findings mismatches_;
};

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SET_NOTES_H_
