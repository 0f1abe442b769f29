// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// arguments_fuzz.cpp - velkctl's argument line, on a device with its sample files: a line that is
// refused or only reads changes nothing, and no key is printed.
//
// An input has an argument on each line.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "fuzz/kit/check.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/tool_device.h"
#include "fuzz/kit/tool_run.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/assignment.h"

namespace fuzz {
namespace {

constexpr int kInvalid = 2;
constexpr char kDocument[] =
    "{\"schema\": 1, \"settings\": {\"eth0.dns\": [\"192.168.0.1\"], \"ntp\": \"off\"}}\n";

constexpr std::array<std::string_view, 13> kReaders{
    "get",    "show",    "list",    "describe", "explain", "status", "doctor",
    "export", "pending", "history", "diff",     "help",    "confirm"};

bool Contains(const Texts& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

// Tries each command in a private copy: minutes for one input.
bool TakesLong(const Texts& words) {
    return Contains(words, "selftest");
}

// The first word that is no option. An abbreviated option is an option, too.
std::string VerbOf(const Texts& words) {
    const auto verb =
        std::ranges::find_if_not(words, [](const auto& word) { return word.starts_with('-'); });
    return verb == words.end() ? "" : *verb;
}

bool OnlyReads(const Texts& words) {
    return std::ranges::find(kReaders, VerbOf(words)) != kReaders.end();
}

// A lock, an empty journal and the library's last answer are no change of the device.
DeviceFiles WithoutTraces(DeviceFiles files) {
    for (const char* trace : {testkit::kLockFile, testkit::kResultFile, testkit::kJournalLock,
                              testkit::kSemaphoreFile, testkit::kReplySocket}) {
        files.erase(trace);
    }
    return files;
}

// Returns the words that may be a key: after the name of one, with "=" or as the next word.
Texts KeysIn(const Texts& words) {
    Texts keys;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string name(velkctl::WithoutValue(words[i]));
        if (!velkctl::NamesSecret(name)) {
            continue;
        }
        if (name.size() < words[i].size()) {
            keys.push_back(words[i].substr(name.size() + 1));
        } else if (i + 1 < words.size()) {
            keys.push_back(words[i + 1]);
        }
    }
    std::erase_if(keys, [](const std::string& key) { return !IsTelling(key); });
    return keys;
}

void CheckKeysAreHidden(const Texts& words, const ToolResult& result) {
    if (Contains(words, "--show-secrets")) {
        return;
    }
    for (const std::string& key : KeysIn(words)) {
        Check(result.All().find(key) == std::string::npos, "a key is not printed");
    }
}

void PlaceInputs() {
    PlaceDevice();
    testkit::WriteFile("/tmp/network.json", kDocument);
    testkit::WriteFile("/tmp/key", "QQQQQQQQQQ\n");
    Check(chdir("/tmp") == 0, "the current folder is the device's");
}

// Without "--", which would make it a word.
void CheckOtherForm(const Texts& words, const ToolResult& result) {
    if (Contains(words, "--") || Contains(words, "--json")) {
        return;
    }
    Texts in_json = words;
    in_json.emplace_back("--json");
    const ToolResult again = RunTool(in_json);
    CheckKeysAreHidden(words, again);
    Check(again.status == result.status || again.status == kInvalid,
          "text and document have one status");
}

void Run(const Texts& words) {
    PlaceInputs();
    const DeviceFiles before = WithoutTraces(ReadDeviceFiles());
    const ToolTurn turn;
    const ToolResult result = RunTool(words);
    CheckKeysAreHidden(words, result);
    if (result.status == kInvalid) {
        Check(WithoutTraces(ReadDeviceFiles()) == before, "what is refused changes nothing");
        Check(!result.error.empty() || !result.output.empty(), "a refusal has a reason");
        CheckOtherForm(words, result);
    } else if (OnlyReads(words)) {
        Check(WithoutTraces(ReadDeviceFiles()) == before, "what is only read stays");
    }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Texts words = fuzz::Lines({reinterpret_cast<const char*>(data), size});
    const bool has_nul = std::ranges::any_of(
        words, [](const std::string& word) { return word.find('\0') != std::string::npos; });
    constexpr size_t kMostWords = 40;
    if (!has_nul && words.size() <= kMostWords && !fuzz::TakesLong(words)) {
        fuzz::Run(words);
    }
    return 0;
}
