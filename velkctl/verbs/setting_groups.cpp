// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_groups.cpp - settings in groups for people: those of the device and of each interface.
#include "velkctl/verbs/setting_groups.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include <unistd.h>

#include "velkctl/files/pager.h"
#include "velkctl/report/output.h"
#include "velkctl/text/columns.h"

namespace velkctl {
namespace {

// The settings of the device have no interface.
constexpr std::array<std::string_view, 3> kGroups{"", VELK_WIRED_INTERFACE,
                                                  VELK_WIRELESS_INTERFACE};
constexpr size_t kUsualColumns = 80;
constexpr size_t kIndent = 2;

std::string_view HeadingOf(std::string_view interface) {
    if (interface == VELK_WIRED_INTERFACE) {
        return "eth0, the wired port:";
    }
    return interface == VELK_WIRELESS_INTERFACE ? "eth1, the wireless adapter:" : "The device:";
}

}  // namespace

std::vector<SettingGroup> GroupsOf(const std::vector<Setting>& settings) {
    std::vector<SettingGroup> groups;
    for (const std::string_view interface : kGroups) {
        SettingGroup group;
        std::copy_if(settings.begin(), settings.end(), std::back_inserter(group),
                     [&](const Setting& setting) { return setting.interface == interface; });
        if (!group.empty()) {
            groups.push_back(std::move(group));
        }
    }
    return groups;
}

std::string NameLines(const SettingGroup& group) {
    std::vector<std::string> names;
    for (const Setting& setting : group) {
        names.push_back(setting.name());
    }
    const std::optional<TerminalSize> size = TerminalSizeOf(STDOUT_FILENO);
    return WrappedWords(names, size ? size->columns : kUsualColumns, kIndent);
}

std::string CutToFit(std::string_view text, size_t used) {
    const std::optional<TerminalSize> size = TerminalSizeOf(STDOUT_FILENO);
    return size ? Cut(text, size->columns - std::min(size->columns, used)) : std::string(text);
}

GroupedRows::GroupedRows(size_t groups, bool is_paged, const Report& report)
    : has_headings_(groups > 1),
      is_collected_(is_paged && !report.is_json() && HasPager()),
      report_(report) {
}

void GroupedRows::Begin(const SettingGroup& group) {
    if (has_headings_) {
        const std::string_view heading = HeadingOf(group.front().interface);
        Add(is_first_ ? "" : "\n");
        Add(Coloured(heading, Colour::kBold, STDOUT_FILENO) + "\n");
    }
    is_first_ = false;
}

void GroupedRows::Add(const std::string& rows) {
    if (is_collected_) {
        collected_.append(rows);
        return;
    }
    report_.Text(rows);
}

void GroupedRows::Finish() {
    if (is_collected_) {
        PrintPaged(collected_);
    }
}

}  // namespace velkctl
