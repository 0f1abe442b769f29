// set_notes.h - notes about the effects of a set on other settings and on the device.
#ifndef VELKCTL_DOCTOR_SET_NOTES_H_
#define VELKCTL_DOCTOR_SET_NOTES_H_

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
    // `settings` are those that are set. Without `reads_others`, no other setting is read or noted.
    SetNotes(std::vector<Setting> settings, const Device& device, bool reads_others);

    // Notes, after the set: other settings that it switched, addresses that do not fit each other
    // since then, a value that the next change of another setting undoes and, at a terminal, when
    // the set takes effect.
    void Print(Report& report) const;

  private:
    void PrintOthers(Report& report) const;
    void PrintSwitched(Report& report) const;
    void PrintMismatches(Report& report) const;

    const std::vector<Setting> settings_;
    const Device& device_;
    const bool reads_others_;
    const std::vector<PrintedSetting> others_;
    const Findings mismatches_;
};

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_SET_NOTES_H_
