// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// concurrency.cpp - callers that meet at the settings file.
#include "fault/kit/concurrency.h"

#include <cstring>
#include <string_view>

#include <unistd.h>

#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::kIdentityFile;

// The value that this thread stores now, for its fake tools.
struct Store {
    size_t setting;
    std::string value;
};
thread_local Store own_store;

// Replaces the copying of the edit: only the holder of the lock comes here. The edit has its own
// value, and for the other setting the value stored last.
void CopyAsHolder(Board& board) {
    if (board.holders.fetch_add(1) != 0) {
        ++board.crowded;
    }
    std::array<std::string, 2> values{board.last[0], board.last[1]};
    values[own_store.setting] = own_store.value;
    const std::string text = testkit::ReadFile(testkit::CopyOf(kIdentityFile));
    if (text != SettingsText(values)) {
        ++board.lost;
    }
    usleep(500);
    testkit::WriteFile(kIdentityFile, text);
    --board.holders;
}

// Replaces the removal of the edit copy, the last step under the lock that concerns the file.
void EndAsHolder(Board& board) {
    unlink(testkit::CopyOf(kIdentityFile).c_str());
    strcpy(board.last[own_store.setting], own_store.value.c_str());
}

}  // namespace

void ConcurrencyTest::MeetAt(Board& board) {
    testkit::WriteFile(kIdentityFile, SettingsText({board.last[0], board.last[1]}));
    libc().ScriptAlways(Call::kSystem, testkit::Return(0));
    libc().OnCall(Call::kSystem, [&board](const Event& event) {
        const testkit::Unrecorded ours;
        if (event.text.starts_with("cat ")) {
            CopyAsHolder(board);
        } else if (event.text.starts_with("rm ")) {
            EndAsHolder(board);
        }
    });
}

void ConcurrencyTest::ExpectNothingLost(const Board& board, int callers) {
    EXPECT_EQ(board.stored, callers * kRounds);
    EXPECT_GT(board.refused, 0) << "nobody met anybody";
    EXPECT_EQ(board.crowded, 0);
    EXPECT_EQ(board.lost, 0);
    EXPECT_EQ(board.wrong, 0);
    EXPECT_EQ(testkit::ReadFile(kIdentityFile), SettingsText({board.last[0], board.last[1]}));
    EXPECT_FALSE(testkit::Exists(testkit::CopyOf(kIdentityFile)));
}

int StoreOne(Board& board, size_t setting, const std::string& value) {
    own_store = {setting, value};
    const _velk_request request = testkit::MakeRequest(VELK_SET, kSettingIds[setting], "", value);
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    if (result == LIB_VELK_SUCCESS) {
        ++board.stored;
    } else if (result == LIB_VELK_LOCKED) {
        ++board.refused;
        usleep(500);
    } else {
        ++board.wrong;
    }
    return result;
}

// While the file is copied it may be empty, and so is the answer: these settings may be missing.
void ReadOne(Board& board, size_t setting) {
    const _velk_request request = testkit::MakeRequest(VELK_GET, kSettingIds[setting], "");
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    constexpr std::string_view kOfValues = "0123456789.";
    const std::string value = response.data;
    if (result != LIB_VELK_SUCCESS || value.find_first_not_of(kOfValues) != std::string::npos) {
        ++board.wrong;
    }
}

}  // namespace fault
