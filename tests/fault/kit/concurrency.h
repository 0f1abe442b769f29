// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// concurrency.h - the base of the tests of many callers at once: the settings file, which is stored
// through an edit copy, and a board that notices two holders of the lock at a time.
#ifndef TESTS_FAULT_KIT_CONCURRENCY_H_
#define TESTS_FAULT_KIT_CONCURRENCY_H_

#include <array>
#include <atomic>
#include <string>

#include "support/device_test.h"

namespace fault {

inline constexpr int kRounds = 4;  // the number of values that each caller stores

// The two settings of the file, and the text that the file has with them.
inline constexpr std::array<uint32_t, 2> kSettingIds{VELK_CMD_ADMINISTRATOR, VELK_CMD_LOCATION};
inline std::string SettingsText(const std::array<std::string, 2>& values) {
    return "ADMINISTRATOR=" + values[0] + "\nLOCATION=" + values[1] + "\n";
}

// The state that the callers share. Processes have it in shared memory.
struct Board {
    std::atomic<int> holders;
    std::atomic<int> crowded;  // more than one holder
    std::atomic<int> lost;     // an edit copy without the value stored last
    std::atomic<int> wrong;    // an answer that is none of those expected
    std::atomic<int> stored;
    std::atomic<int> refused;
    // The value of each setting that was stored last. Written by the holder of the lock.
    char last[2][32] = {"0", "0"};
};

class ConcurrencyTest : public testkit::DeviceTest {
  protected:
    // Writes the settings file and replaces the tools of every set by fakes that use the board, in
    // all threads and in processes forked from now on.
    void MeetAt(Board& board);

    // Checks the board and the file after all callers have stored all their values.
    static void ExpectNothingLost(const Board& board, int callers);
};

// Sets this setting and returns the result. A refused caller waits a moment before it returns.
int StoreOne(Board& board, size_t setting, const std::string& value);

// Gets the setting while others set it.
void ReadOne(Board& board, size_t setting);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_CONCURRENCY_H_
