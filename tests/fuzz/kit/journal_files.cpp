// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_files.cpp - entries of the journal on the device.
#include "fuzz/kit/journal_files.h"

#include <algorithm>
#include <array>

#include <sys/stat.h>

#include "support/device_test.h"
#include "support/libc_recorder.h"
#include "support/paths.h"

namespace fuzz {
namespace {

constexpr std::array<std::string_view, 9> kJournalled{
    testkit::kInterfacesFile, testkit::kDhcpConfigFile, testkit::kExitHooks,
    testkit::kClientScript,   testkit::kResolverFile,   testkit::kIdentityFile,
    testkit::kSnmpFile,       testkit::kCrontab,        testkit::kNtpLog};

}  // namespace

bool IsJournalled(std::string_view path) {
    return std::ranges::find(kJournalled, path) != kJournalled.end();
}

void PlaceEntry(int number, std::string_view bytes) {
    const testkit::Unrecorded unrecorded;
    (void)mkdir(testkit::kJournalFolder, 0700);
    const std::string path =
        std::string(testkit::kJournalFolder) + "/00000" + std::to_string(number) + "-k7f2";
    testkit::WriteFile(path, bytes);
    (void)chmod(path.c_str(), 0600);
}

}  // namespace fuzz
