// concurrency.h - what the tests of many callers at once stand on: the settings file, which is
// stored through an edit copy.
#ifndef TESTS_FAULT_CONCURRENCY_H_
#define TESTS_FAULT_CONCURRENCY_H_

#include <array>
#include <string>

#include "support/device_test.h"

namespace fault {

inline constexpr char kSettings[] = "/var/libvelk/libvelk";
inline constexpr char kEditCopy[] = "/var/tmp/libvelk";
inline constexpr int kRounds = 25;  // of each caller

// The two settings of the file, and the text that the file has with them.
inline constexpr std::array<uint32_t, 2> kSettingIds{VELK_CMD_ADMINISTRATOR, VELK_CMD_LOCATION};
inline std::string SettingsText(const std::array<std::string, 2>& values) {
    return "ADMINISTRATOR=" + values[0] + "\nLOCATION=" + values[1] + "\n";
}

class ConcurrencyTest : public testkit::DeviceTest {};

}  // namespace fault

#endif  // TESTS_FAULT_CONCURRENCY_H_
