// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usb_devices.cpp - adds and removes the wireless adapter in the list of USB devices.
#include "sandbox/hardware/usb_devices.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "lib/base/paths.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr char kAdapterMark[] = "Driver=wlan";

std::string ReadDevices() {
    std::stringstream text;
    text << std::ifstream(velk::kUsbDevices).rdbuf();
    return text.str();
}

// Replaces the file by rename(2), so that readers see the old list or the new one.
void WriteDevices(const std::string& text) {
    const std::string copy = std::string(velk::kUsbDevices) + ".new";
    std::ofstream file(copy);
    file << text;
    file.close();
    std::filesystem::permissions(copy, std::filesystem::status(velk::kUsbDevices).permissions());
    if (!file || rename(copy.c_str(), velk::kUsbDevices) == -1) {
        Fail(std::string("cannot write ") + velk::kUsbDevices, errno);
    }
}

// Returns position and size of the adapter's paragraph, including the blank line before it.
std::pair<size_t, size_t> FindAdapter(const std::string& devices) {
    const size_t mark = devices.find(kAdapterMark);
    if (mark == std::string::npos) {
        return {0, 0};
    }
    const size_t before = devices.rfind("\n\n", mark);
    const size_t start = before == std::string::npos ? 0 : before + 1;
    const size_t after = devices.find("\n\n", mark);
    const size_t end = after == std::string::npos ? devices.size() : after + 1;
    return {start, end - start};
}

}  // namespace

void UsbDevices::RemoveAdapter() {
    std::string devices = ReadDevices();
    const auto [start, size] = FindAdapter(devices);
    if (size == 0) {
        return;
    }
    std::string adapter = devices.substr(start, size);
    WriteDevices(devices.erase(start, size));
    adapter_ = std::move(adapter);
}

void UsbDevices::RestoreAdapter() {
    if (!adapter_.empty()) {
        WriteDevices(ReadDevices() + adapter_);
        adapter_.clear();
    }
}

}  // namespace sandbox
