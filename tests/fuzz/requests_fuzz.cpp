// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// requests_fuzz.cpp - the request record itself, on a device with its sample files.
//
// An input is the record's bytes; missing bytes are zero.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/kit/fuzz_device.h"
#include "sandbox/device/sample_files.h"

namespace fuzz {
namespace {

// Read once: the folder they come from does not change.
const std::vector<sandbox::SampleFile>& Samples() {
    static const auto samples = sandbox::ReadSamples(VELK_SOURCE_DIR "/sandbox/data/rootfs");
    return samples;
}

// No request reads or changes this file. It is the machine's own, and must stay unchanged.
bool IsHostsFile(const std::string& path) {
    return path.starts_with("/etc/hosts");
}

void PlaceSamples() {
    for (const sandbox::SampleFile& sample : Samples()) {
        if (sample.kind != sandbox::FileKind::kLink && !IsHostsFile(sample.path)) {
            testkit::WriteFile(sample.path, sample.text);
        }
    }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    _velk_request request{};
    memcpy(&request, data, std::min(size, sizeof(request)));
    fuzz::PlaceSamples();
    fuzz::Turn turn;
    turn.shell().Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
    const int result = turn.Execute(request);
    if (request.command_type < VELK_GET || request.command_type > VELK_RESTART) {
        fuzz::Check(result == LIB_VELK_INVALID_PARAMETER, "there are three types");
    }
    if (request.command_type == VELK_GET) {
        fuzz::Check(turn.Execute(request) == result, "a get has one answer");
    }
    return 0;
}
