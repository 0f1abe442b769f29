// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/entry/dispatch_tables.h"

#include <cstddef>

#include <gtest/gtest.h>

#include "velk.h"

namespace {

using velk::CommandEntry;

// One row as it is meant to read.
struct Row {
    uint32_t id;
    bool none, eth0, eth1;
    velk::CommandHandler handler;
};

void ExpectRows(std::span<const CommandEntry> table, const std::vector<Row>& rows) {
    ASSERT_EQ(table.size(), rows.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE("row " + std::to_string(i));
        EXPECT_EQ(table[i].command_id, rows[i].id);
        EXPECT_EQ(table[i].no_interface_allowed != 0, rows[i].none);
        EXPECT_EQ(table[i].eth0_allowed != 0, rows[i].eth0);
        EXPECT_EQ(table[i].eth1_allowed != 0, rows[i].eth1);
        EXPECT_EQ(table[i].spare, 0);
        EXPECT_EQ(table[i].handler, rows[i].handler);
    }
}

TEST(DispatchTables, TheGetRows) {
    ExpectRows(velk::kGetTable,
               {
                   {2, true, false, false, GetSettingFile}, {3, true, false, false, GetSettingFile},
                   {6, true, false, false, GetNtp},         {7, true, false, false, GetDhcp},
                   {9, true, false, false, GetNtp},         {10, true, false, false, GetNtp},
                   {101, false, true, true, GetIoctl},      {201, false, true, false, GetIoctl},
                   {102, false, true, true, GetInterfaces}, {103, false, true, true, GetInterfaces},
                   {104, false, true, true, GetInterfaces}, {105, false, true, true, GetInterfaces},
                   {106, false, true, true, GetInterfaces}, {107, false, true, true, GetDhcp},
                   {108, false, true, true, GetDns},        {4, false, false, true, GetWlanState},
                   {5, false, false, true, GetWlanState},   {301, false, false, true, GetWlanState},
                   {318, false, false, true, GetWlanConf},  {302, false, false, true, GetWlanConf},
                   {303, false, false, true, GetWlanConf},  {304, false, false, true, GetWlanConf},
                   {305, false, false, true, GetWlanState}, {306, false, false, true, GetWlanConf},
                   {307, false, false, true, GetWlanConf},  {308, false, false, true, GetWlanConf},
                   {309, false, false, true, GetWlanConf},  {310, false, false, true, GetWlanConf},
                   {311, false, false, true, GetWlanConf},  {312, false, false, true, GetWlanConf},
                   {314, false, false, true, GetWlanConf},  {315, false, false, true, GetWlanState},
                   {316, false, false, true, GetWlanState}, {317, false, false, true, GetWlanState},
                   {11, true, false, false, GetWebUp},
               });
}

TEST(DispatchTables, TheSetRows) {
    ExpectRows(
        velk::kSetTable,
        {
            {2, true, false, false, SetSettingFile}, {3, true, false, false, SetSettingFile},
            {6, true, false, false, SetNtp},         {7, true, false, false, SetDhcp},
            {9, true, false, false, SetNtp},         {201, false, true, false, SetIoctl},
            {102, false, true, true, SetInterfaces}, {109, false, true, false, SetInterfaces},
            {103, false, true, true, SetInterfaces}, {104, false, true, true, SetInterfaces},
            {105, false, true, true, SetInterfaces}, {106, false, true, true, SetInterfaces},
            {107, false, true, true, SetDhcp},       {108, false, true, true, SetDns},
            {318, false, false, true, SetWlanConf},  {302, false, false, true, SetWlanConf},
            {303, false, false, true, SetWlanConf},  {304, false, false, true, SetWlanConf},
            {306, false, false, true, SetWlanConf},  {307, false, false, true, SetWlanConf},
            {308, false, false, true, SetWlanConf},  {309, false, false, true, SetWlanConf},
            {310, false, false, true, SetWlanConf},  {311, false, false, true, SetWlanConf},
            {312, false, false, true, SetWlanConf},  {314, false, false, true, SetWlanConf},
            {11, true, false, false, SetWebUp},
        });
}

TEST(DispatchTables, TheRestartRow) {
    ExpectRows(velk::kRestartTable, {
                                        {1, false, true, true, Restart},
                                    });
}

TEST(DispatchTables, ARowHoldsItsFieldsInOrder) {
    EXPECT_EQ(offsetof(CommandEntry, command_id), 0U);
    EXPECT_EQ(offsetof(CommandEntry, no_interface_allowed), 4U);
    EXPECT_EQ(offsetof(CommandEntry, eth0_allowed), 5U);
    EXPECT_EQ(offsetof(CommandEntry, eth1_allowed), 6U);
    EXPECT_EQ(offsetof(CommandEntry, spare), 7U);
    EXPECT_EQ(offsetof(CommandEntry, handler), 8U);
}

}  // namespace
