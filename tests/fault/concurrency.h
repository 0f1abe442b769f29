// concurrency.h - what the tests of many callers at once stand on: the settings file, which is
// stored through an edit copy.
#ifndef TESTS_FAULT_CONCURRENCY_H_
#define TESTS_FAULT_CONCURRENCY_H_

#include "support/device_test.h"

namespace fault {

inline constexpr char kSettings[] = "/var/libvelk/libvelk";
inline constexpr char kEditCopy[] = "/var/tmp/libvelk";
inline constexpr int kRounds = 25;  // of each caller

class ConcurrencyTest : public testkit::DeviceTest {};

}  // namespace fault

#endif  // TESTS_FAULT_CONCURRENCY_H_
