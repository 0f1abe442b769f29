// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// growth.cpp - gets and sets in files of 1 KB to 100 MB, with the stanza at the end.
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "bench/run_program.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr char kHeader[] = "iface eth0 inet ";
constexpr char kStanza[] =
    "iface eth0 inet static\n"
    "\taddress 192.168.0.10\n"
    "\tnetmask 255.255.255.0\n"
    "\tgateway 192.168.0.1\n";

struct Size {
    const char* name;
    size_t bytes;
};
constexpr Size kSizes[] = {
    {"1KB", 1000},        {"10KB", 10 * 1000},        {"100KB", 100 * 1000},
    {"1MB", 1000 * 1000}, {"10MB", 10 * 1000 * 1000}, {"100MB", 100 * 1000 * 1000}};

// Returns stanzas of other interfaces, each with a comment, up to the size, and the stanza of eth0.
std::string LongFile(size_t bytes) {
    std::string text;
    for (int i = 10; text.size() + sizeof(kStanza) < bytes; ++i) {
        const std::string number = std::to_string(i);
        text += "# Interface " + number + ", put in by the installer; do not edit it by hand.\n";
        text += "iface eth" + number + " inet static\n\taddress 10.1.2.3\n\tnetmask 255.0.0.0\n\n";
    }
    return text + kStanza;
}

std::function<void()> WriteLongFile(size_t bytes) {
    return [bytes] { WriteByHand(velk::kInterfacesFile, LongFile(bytes)); };
}

void WriteUsualFile() {
    WriteByHand(velk::kInterfacesFile, kStanza);
}

int CallsFor(size_t bytes) {
    return static_cast<int>(std::max<size_t>(100'000 / bytes, 1));
}

int SamplesFor(size_t bytes) {
    return bytes > 10'000'000 ? 11 : 60;
}

// Finds the interface and stops, as a user would with grep.
void AddGrep(const Size& size) {
    Compare({.name = std::string("growth/grep/") + size.name,
             .ours = Timed(Get(VELK_CMD_IP_ADDRESS, "eth0"), CallsFor(size.bytes)),
             .other = Timed(Process({"grep", "-F", "-m1", kHeader, velk::kInterfacesFile})),
             .samples = SamplesFor(size.bytes),
             .prepare = WriteLongFile(size.bytes),
             .restore = WriteUsualFile});
}

void AddGet(const Size& size) {
    const auto by_hand = [] {
        char value[VELK_DATA_SIZE];
        CutByHand(velk::kInterfacesFile, kHeader, "address ", value);
    };
    Compare({.name = std::string("growth/get/") + size.name,
             .ours = Timed(Get(VELK_CMD_IP_ADDRESS, "eth0"), CallsFor(size.bytes)),
             .other = Timed(by_hand, CallsFor(size.bytes)),
             .samples = SamplesFor(size.bytes),
             .prepare = WriteLongFile(size.bytes),
             .restore = WriteUsualFile});
}

void AddSet(const Size& size) {
    Compare({.name = std::string("growth/set/") + size.name,
             .ours = Timed(Set(VELK_CMD_IP_ADDRESS, "eth0", "192.168.0.10")),
             .other = Timed([] { EditByHand(velk::kInterfacesFile); }),
             .samples = SamplesFor(size.bytes),
             .prepare = WriteLongFile(size.bytes),
             .restore = WriteUsualFile});
}

// The kernel counts pages in batches, so a single run is not exact.
double MedianPeak(const char* call) {
    std::vector<double> peaks;
    for (int i = 0; i < 15; ++i) {
        peaks.push_back(NumberFrom({Built("velk_bench_peak"), call}));
    }
    return Median(peaks);
}

// Reports the peak memory of a program that makes one call, in KB, minus that with a file of usual
// size.
void AddPeak(const char* call, const Size& size) {
    const auto more_memory = [call, size] {
        WriteUsualFile();
        const double usual = MedianPeak(call);
        WriteByHand(velk::kInterfacesFile, LongFile(size.bytes));
        const double large = MedianPeak(call);
        WriteUsualFile();
        return large - usual;
    };
    Report(std::string("growth/peak/") + call + "/" + size.name, "more_kb", more_memory);
}

}  // namespace

void AddGrowth() {
    for (const Size& size : kSizes) {
        AddGet(size);
        AddGrep(size);
        AddSet(size);
    }
    for (const char* call : {"get", "set"}) {
        AddPeak(call, kSizes[4]);
        AddPeak(call, kSizes[5]);
    }
}

}  // namespace bench
