// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// kernel_features.h - features that an emulated kernel may lack.
#ifndef TESTS_SUPPORT_KERNEL_FEATURES_H_
#define TESTS_SUPPORT_KERNEL_FEATURES_H_

namespace testkit {

// A feature of the kernel that user-mode emulation may lack.
struct KernelFeature {
    const char* missing;  // the reason of a skipped test
    bool (*is_there)();
};

// Children that end unseen if the program asks for it.
extern const KernelFeature kIgnoredChildren;
// Orphans of its children's children that become the program's own children.
extern const KernelFeature kAdoption;
// The command lines of other processes, as they were given.
extern const KernelFeature kCommandLines;
// A signal that ends the first process of a PID namespace, sent by itself.
extern const KernelFeature kEndOfFirstProcess;

// True if the kernel has the feature. Only an emulated one is asked: on a real kernel the test runs
// and fails.
bool Has(const KernelFeature& feature);

}  // namespace testkit

// Skips the test if emulation lacks the feature.
#define SKIP_WITHOUT(feature)                     \
    if (!testkit::Has(testkit::feature)) {        \
        GTEST_SKIP() << testkit::feature.missing; \
    }                                             \
    static_assert(true)

#endif  // TESTS_SUPPORT_KERNEL_FEATURES_H_
