// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_groups.h - settings in groups for people: those of the device and of each interface.
#ifndef VELKCTL_VERBS_SETTING_GROUPS_H_
#define VELKCTL_VERBS_SETTING_GROUPS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// The settings of the device, or of one interface.
using SettingGroup = std::vector<Setting>;

// Returns the settings in groups: those of the device, of eth0 and of eth1.
std::vector<SettingGroup> GroupsOf(const std::vector<Setting>& settings);

// Returns the names of the settings in indented lines for the terminal's width.
std::string NameLines(const SettingGroup& group);

// Returns the text, cut if the terminal has no room for it after `used` columns. Without a terminal
// nothing is cut.
std::string CutToFit(std::string_view text, size_t used);

// The rows of groups, printed together at the end.
class GroupedRows {
  public:
    // Adds the rows of a group, each ended by a newline.
    void Add(const SettingGroup& group, const std::string& rows);

    // Prints the rows; those of several groups with headings. At a terminal they go through the
    // pager, unless the user wants none. Does nothing in JSON.
    void Print(bool is_paged, const Report& report) const;

  private:
    struct Entry {
        std::string_view interface;
        std::string rows;
    };

    std::vector<Entry> entries_;
};

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SETTING_GROUPS_H_
