// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unread_settings.h - settings that could not be read, grouped by the reason.
#ifndef VELKCTL_VERBS_UNREAD_SETTINGS_H_
#define VELKCTL_VERBS_UNREAD_SETTINGS_H_

#include <vector>

#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_groups.h"

namespace velkctl {

class UnreadSettings {
  public:
    void Add(const Setting& setting, const Problem& problem, const Report& report);
    // Reports the settings: in text those with the same reason together, in JSON each.
    void Complain(Report& report) const;

  private:
    struct Group {
        Problem problem;  // the first setting's
        SettingGroup settings;
    };
    static Problem ProblemOf(const Group& group);

    std::vector<Group> groups_;
};

}  // namespace velkctl

#endif  // VELKCTL_VERBS_UNREAD_SETTINGS_H_
