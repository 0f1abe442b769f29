// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_groups.h - settings in groups for people: those of the device and of each interface.
#ifndef VELKCTL_VERBS_SETTING_GROUPS_H_
#define VELKCTL_VERBS_SETTING_GROUPS_H_

#include <cstddef>
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

// Prints the rows of groups. Several groups have headings. Does nothing in JSON.
class GroupedRows {
  public:
    // If the output may be paged, the rows are printed together at the end: the pager is used only
    // for many. Otherwise each is printed at once.
    GroupedRows(size_t groups, bool is_paged, const Report& report);

    // Begins a group.
    void Begin(const SettingGroup& group);
    // Adds rows to the group, each ended by a newline.
    void Add(const std::string& rows);
    // Prints the rows that are not printed yet.
    void Finish();

  private:
    const bool has_headings_;
    const bool is_collected_;
    const Report& report_;
    bool is_first_ = true;
    std::string collected_;
};

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SETTING_GROUPS_H_
