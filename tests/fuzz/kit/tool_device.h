// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_device.h - the base of the targets that run velkctl, velk-web and the simulated device's
// readers: a private device with processes of its own, on which no program is started.
#ifndef TESTS_FUZZ_KIT_TOOL_DEVICE_H_
#define TESTS_FUZZ_KIT_TOOL_DEVICE_H_

#include <cstddef>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/check.h"
#include "support/fake_shell.h"

namespace fuzz {

// The device's files in its own folders, by path, each with its kind and its text.
using DeviceFiles = std::map<std::string, std::string>;
DeviceFiles ReadDeviceFiles();

// Gives the device its sample files and no other.
void PlaceDevice();

// Returns the paths that differ in kind or text, or that one of the two lacks.
std::vector<std::string> Differences(const DeviceFiles& one, const DeviceFiles& other);

// Waits until all processes that this one has started have ended, also those of others.
void AwaitEnds();

// During its lifetime, the standard streams of this process write into memory.
class PrintedTexts {
  public:
    PrintedTexts();
    ~PrintedTexts();
    PrintedTexts(const PrintedTexts&) = delete;
    PrintedTexts& operator=(const PrintedTexts&) = delete;

    std::string output();
    std::string error();

  private:
    struct Stream {
        char* text = nullptr;
        size_t size = 0;
        FILE* file = nullptr;
        FILE* before = nullptr;
    };
    static void Exchange(FILE*& standard, Stream& stream);
    static std::string TextOf(Stream& stream);

    Stream output_;
    Stream error_;
};

// One input's turn: an empty recorder, a fake shell, no pause that takes time. Its end checks that
// no descriptor is left open, no process runs, and the library's lock is free.
class ToolTurn {
  public:
    ToolTurn();
    ~ToolTurn();
    ToolTurn(const ToolTurn&) = delete;
    ToolTurn& operator=(const ToolTurn&) = delete;

    testkit::FakeShell& shell() { return shell_; }

  private:
    std::vector<int> descriptors_;
    testkit::FakeShell shell_;
};

// A text as a person reads it at a terminal: printable characters, line ends and tabs.
bool IsPlainText(std::string_view text);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_TOOL_DEVICE_H_
