// requests_fuzz.cpp - the request record itself, on a device with its sample files.
//
// An input is the record's bytes; what is missing is zero.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/kit/fuzz_device.h"
#include "sandbox/sample_files.h"

namespace fuzz {
namespace {

// The device's files, read before the first turn hides nothing of them.
const std::vector<sandbox::SampleFile>& Samples() {
    static const auto samples = sandbox::ReadSamples(VELK_SOURCE_DIR "/sandbox/rootfs");
    return samples;
}

bool IsEdited(const std::string& path) {
    return !path.starts_with("/etc/hosts");
}

void PlaceSamples() {
    for (const sandbox::SampleFile& sample : Samples()) {
        if (!sample.is_link && IsEdited(sample.path)) {
            testkit::WriteFile(sample.path, sample.text);
        }
    }
}

// No key or pass phrase is ever logged, nor run.
void CheckSecretStaysSecret(const _velk_request& request) {
    constexpr size_t kTellingLength = 5;
    const bool is_secret =
        request.command_id >= VELK_CMD_WEP_KEY_1 && request.command_id <= VELK_CMD_PSK;
    const std::string text(request.data, strnlen(request.data, sizeof(request.data)));
    if (!is_secret || text.size() < kTellingLength) {
        return;
    }
    for (const std::string& line : testkit::LibcRecorder::Get().Story()) {
        Check(line.find(text) == std::string::npos, "a secret is neither logged nor run");
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
    fuzz::CheckSecretStaysSecret(request);
    if (request.command_type < VELK_GET || request.command_type > VELK_RESTART) {
        fuzz::Check(result == LIB_VELK_INVALID_PARAMETER, "there are three types");
    }
    if (request.command_type == VELK_GET) {
        fuzz::Check(turn.Execute(request) == result, "a get has one answer");
    }
    return 0;
}
