// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Settings in groups for people.
#include "velkctl/verbs/setting_groups.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;
using velkctl::GroupedRows;
using velkctl::Report;
using velkctl::Setting;
using velkctl::SettingGroup;

std::vector<Setting> Named(const std::vector<std::string>& names) {
    std::vector<Setting> settings;
    for (const std::string& name : names) {
        settings.push_back(velkctl::FindSetting(name).value());
    }
    return settings;
}

std::string NamesIn(const std::vector<SettingGroup>& groups) {
    std::string names;
    for (const SettingGroup& group : groups) {
        names.append(NameLines(group)).append("-\n");
    }
    return names;
}

TEST(SettingGroups, AreThoseOfTheDeviceAndOfEachInterface) {
    EXPECT_EQ(NamesIn(GroupsOf(Named({"eth1.ssid", "eth0.dns", "ntp", "eth0.method"}))),
              "  ntp\n-\n  eth0.dns eth0.method\n-\n  eth1.ssid\n-\n");
    EXPECT_EQ(NamesIn(GroupsOf(Named({"eth1.ssid"}))), "  eth1.ssid\n-\n");
    EXPECT_TRUE(velkctl::GroupsOf({}).empty());
}

TEST(SettingGroups, HaveTheirNamesWrappedAt80Columns) {
    const std::string lines = NameLines(velkctl::Settings());
    size_t begin = 0;
    for (size_t end = 0; (end = lines.find('\n', begin)) != std::string::npos; begin = end + 1) {
        EXPECT_LE(end - begin, 80U) << lines;
    }
    EXPECT_EQ(begin, lines.size());
}

TEST(SettingGroups, AreNotCutWithoutATerminal) {
    const std::string text(200, 'a');
    EXPECT_EQ(velkctl::CutToFit(text, 100), text);
}

TEST(SettingGroups, HaveHeadingsIfThereAreSeveral) {
    const Report report(Report::Form::kText);
    CaptureStdout();
    GroupedRows rows(2, /*is_paged=*/true, report);
    rows.Begin(Named({"ntp"}));
    rows.Add("ntp on\n");
    rows.Begin(Named({"eth1.ssid"}));
    rows.Add("eth1.ssid a\n");
    rows.Add("eth1.channel 1\n");
    rows.Finish();
    EXPECT_EQ(GetCapturedStdout(),
              "The device:\nntp on\n\neth1, the wireless adapter:\neth1.ssid a\neth1.channel 1\n");
}

TEST(SettingGroups, HaveNoHeadingIfThereIsOne) {
    const Report report(Report::Form::kText);
    CaptureStdout();
    GroupedRows rows(1, /*is_paged=*/false, report);
    rows.Begin(Named({"eth0.dns"}));
    rows.Add("eth0.dns none\n");
    rows.Finish();
    EXPECT_EQ(GetCapturedStdout(), "eth0.dns none\n");
}

TEST(SettingGroups, ArePrintedRowByRowIfNoPagerMayShowThem) {
    const Report report(Report::Form::kText);
    CaptureStdout();
    GroupedRows rows(1, /*is_paged=*/true, report);
    rows.Begin(Named({"eth0.dns"}));
    rows.Add("eth0.dns none\n");
    EXPECT_EQ(GetCapturedStdout(), "eth0.dns none\n");
}

TEST(SettingGroups, PrintNothingInADocument) {
    const Report report(Report::Form::kJson);
    CaptureStdout();
    GroupedRows rows(1, /*is_paged=*/true, report);
    rows.Begin(Named({"eth0.dns"}));
    rows.Add("eth0.dns none\n");
    rows.Finish();
    EXPECT_EQ(GetCapturedStdout(), "");
}

}  // namespace
