// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_rows_test.cpp - each command must have rows in the tables of the fault and fuzz rings,
// and an edit case if it edits a file.
#include <algorithm>
#include <array>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "edits/edit_case.h"
#include "fault/kit/requests.h"
#include "fuzz/kit/daemon_record.h"
#include "fuzz/kit/edit_rows.h"
#include "fuzz/kit/scan_rows.h"
#include "lib/entry/dispatch_tables.h"
#include "support/paths.h"

namespace {

bool IsIn(const auto& rows, uint32_t id) {
    return std::ranges::any_of(rows, [&](const auto& row) { return row.id == id; });
}

// The link speed is set by a tool: no file and no record holds it.
bool IsSetByATool(uint32_t id) {
    return id == VELK_CMD_LINK_SPEED;
}

// The kernel answers for the MAC address: no text is read.
bool IsReadFromTheKernel(uint32_t id) {
    return id == VELK_CMD_MAC_ADDRESS;
}

namespace fs = std::filesystem;

constexpr char kEditCases[] = VELK_SOURCE_DIR "/tests/edits";

std::set<uint32_t> IdsWithEditCase() {
    std::set<uint32_t> ids;
    for (const fs::directory_entry& folder : fs::directory_iterator(kEditCases)) {
        if (!folder.is_directory()) {
            continue;
        }
        for (const fs::directory_entry& file : fs::directory_iterator(folder)) {
            ids.insert(edits::ReadEditCase(file).request.command_id);
        }
    }
    return ids;
}

struct EditFolder {
    const char* file;
    std::string_view folder;
};

// A file with several folders has the one with the simplest edits here.
constexpr std::array kEditFolders{
    EditFolder{testkit::kInterfacesFile, "address"},
    EditFolder{testkit::kDhcpConfigFile, "dhcp-options"},
    EditFolder{testkit::kClientScript, "client-script"},
    EditFolder{testkit::kExitHooks, "exit-hooks"},
    EditFolder{testkit::kCrontab, "ntp"},
    EditFolder{testkit::kIdentityFile, "settings"},
    EditFolder{testkit::kResolverFile, "resolver"},
};

std::string FolderFor(std::string_view file) {
    const auto* row = std::ranges::find(kEditFolders, file, &EditFolder::file);
    return row == kEditFolders.end() ? "a new folder of tests/edits"
                                     : "tests/edits/" + std::string(row->folder);
}

TEST(CommandRowsTest, EachSetOfAFileHasAnEditCase) {
    const std::set<uint32_t> ids = IdsWithEditCase();
    for (const fuzz::EditRow& row : fuzz::kEditRows) {
        EXPECT_TRUE(ids.contains(row.id)) << "add a case with the line 'set " << row.id << "' to "
                                          << FolderFor(row.files.front().path);
    }
}

TEST(CommandRowsTest, EachGetHasARowInTheFuzzRing) {
    for (const velk::CommandEntry& get : velk::kGetTable) {
        const uint32_t id = get.command_id;
        EXPECT_TRUE(IsIn(fuzz::kScanRows, id) || IsIn(fuzz::kRecordRows, id) ||
                    IsReadFromTheKernel(id))
            << "add a row for the get of " << id
            << " to kScanRows in tests/fuzz/kit/scan_rows.cpp if it reads a file or a tool's "
               "output, or to kRecordRows in tests/fuzz/kit/daemon_record.cpp if the wireless "
               "daemon holds it";
    }
}

TEST(CommandRowsTest, EachSetHasDataInTheFaultRing) {
    for (const velk::CommandEntry& set : velk::kSetTable) {
        EXPECT_TRUE(fault::HasData(set.command_id)) << "add data for the set of " << set.command_id
                                                    << " to kData in tests/fault/kit/requests.cpp";
    }
}

TEST(CommandRowsTest, EachSetHasARowInTheFuzzRing) {
    for (const velk::CommandEntry& set : velk::kSetTable) {
        const uint32_t id = set.command_id;
        EXPECT_TRUE(IsIn(fuzz::kEditRows, id) || IsIn(fuzz::kRecordRows, id) || IsSetByATool(id))
            << "add a row for the set of " << id
            << " to kEditRows in tests/fuzz/kit/edit_rows.cpp if it edits a file, or to "
               "kRecordRows in tests/fuzz/kit/daemon_record.cpp if the wireless daemon holds it";
    }
}

}  // namespace
