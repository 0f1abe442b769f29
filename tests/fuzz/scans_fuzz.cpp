// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scans_fuzz.cpp - every file and every tool's output that a get reads, with any text.
//
// An input is the row's letter, "0" or "1" for the interface and the rest of a line that is not
// looked at, then the row's texts with "----" between them.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "fuzz/kit/edit_files.h"
#include "fuzz/kit/fuzz_device.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/scan_rows.h"
#include "fuzz/kit/tool_answers.h"
#include "support/paths.h"

namespace fuzz {
namespace {

using testkit::kInterfacesFile;
using testkit::kRoutingTable;
using testkit::kSupportList;
using testkit::kUsbDevices;

constexpr size_t kLongestTime = VELK_DATA_SIZE - 3;  // after type and value, before the NUL

void Place(Turn& turn, const std::string& source, const std::string& text) {
    if (source.starts_with('/')) {
        testkit::WriteFile(source, text);
    } else {
        turn.shell().Prints(source, {text});
    }
}

bool IsZero(std::string_view bytes) {
    return IsOf(bytes, std::string_view("\0", 1));
}

// A text that fills the data area to its last byte may be cut.
bool FillsData(const std::string& text) {
    return text.size() >= VELK_DATA_SIZE - 1;
}

// After an hour that fills the data area the ':' is cut off.
void CheckSchedule(const std::string& data, const std::string& source) {
    const char type = data[0];
    Check((type >= VELK_SCHEDULE_HOURS && type <= VELK_SCHEDULE_MONTHLY) ||
              type == VELK_SCHEDULE_NONE,
          "a schedule's type");
    Check(data.find(':', 2) != std::string::npos || source.size() >= kLongestTime,
          "a schedule's time");
}

void CheckForm(const ScanRow& row, const std::string& data, const std::string& source) {
    const std::string text = TextIn(data);
    switch (row.form) {
        case Form::kText:
            Check(Has(source, text), "the text is that of the source");
            Check(!Has(text, "\n"), "the text is from one line");
            break;
        case Form::kGateway: {
            in_addr address{};
            Check(text.empty() || inet_pton(AF_INET, text.c_str(), &address) == 1,
                  "the gateway is an address");
            break;
        }
        case Form::kByte:
            Check(data[0] >= 1 && data[0] <= row.highest, "the byte is a documented one");
            Check(IsZero(std::string_view(data).substr(1)), "one byte alone is written");
            break;
        case Form::kSchedule:
            CheckSchedule(data, source);
            break;
        case Form::kServers:
            Check(IsZero(std::string_view(data).substr(kSlots * kSlotSize)),
                  "three slots alone are written");
            break;
    }
}

void CheckAnswer(const ScanRow& row, const Answer& expected, int result, const std::string& data) {
    Check((result == LIB_VELK_SUCCESS) == expected.succeeds, "a get succeeds as the text allows");
    if (FillsData(expected.bytes)) {
        return;
    }
    std::string bytes = expected.bytes;
    bytes.resize(data.size());
    Check(row.form == Form::kText ? TextIn(data) == TextIn(bytes) : data == bytes,
          "a get returns the value of the text");
}

// The same surroundings for every get: no cable, an adapter, and addresses from DHCP.
void PlaceSurroundings(Turn& turn) {
    testkit::LibcRecorder::Get().Redirect(kRoutingTable, kRoutes);
    testkit::WriteFile(kInterfacesFile, "iface eth0 inet dhcp\niface eth1 inet dhcp\n");
    testkit::WriteFile(kUsbDevices, "S:  Product=QT4408RKM\n");
    turn.shell().Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
}

void RunGet(const ScanRow& row, const std::string& interface, Texts texts) {
    Turn turn;
    PlaceSurroundings(turn);
    texts.resize(row.sources.size());
    std::string all;
    for (size_t i = 0; i < row.sources.size(); ++i) {
        Place(turn, row.sources[i], texts[i]);
        all += texts[i] + "\n";
    }
    const std::string name = row.has_interface ? interface : "";
    const int result = turn.Execute(VELK_GET, row.id, name);
    const std::string data = testkit::Data(turn.response);
    if (result == LIB_VELK_SUCCESS) {
        CheckForm(row, data, all);
    } else {
        Check(IsZero(data), "a get that fails writes nothing");
    }
    if (const auto expected = row.expected(name, texts)) {
        CheckAnswer(row, *expected, result, data);
    }
    Check(turn.Execute(VELK_GET, row.id, name) == result, "a get has one answer");
    Check(testkit::Data(turn.response) == data, "a get has one text");
}

// Returns a line with a device's ids in the kernel's form.
std::string DeviceLine(unsigned long vendor, unsigned long product) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << "Vendor=" << std::setw(4) << vendor
         << " ProdID=" << std::setw(4) << product;
    return text.str();
}

unsigned long HexAfterKey(const std::string& line) {
    return std::min(strtoul(line.substr(4).c_str(), nullptr, 16), 0xFFFFFFFFUL);
}

// True when the device list names the built-in adapter or one of the support list.
bool IsListed(const std::string& support_list, const std::string& devices) {
    bool is_listed = Has(devices, "QT4408RKM");
    unsigned long vendor = 0;
    for (const std::string& line : Lines(support_list)) {
        if (Has(line, "VID=")) {
            vendor = HexAfterKey(line);
        }
        if (Has(line, "PID=")) {
            is_listed = is_listed || Has(devices, DeviceLine(vendor, HexAfterKey(line)));
        }
    }
    return is_listed;
}

void RunAdapter(const std::vector<std::string>& texts) {
    const Turn turn;
    const std::string devices = texts.size() > 1 ? texts[1] : "";
    testkit::WriteFile(kSupportList, texts[0]);
    testkit::WriteFile(kUsbDevices, devices);
    Check(IsWlanAttached() == (IsListed(texts[0], devices) ? 1 : 0), "a listed device is attached");
    testkit::WriteFile(kUsbDevices, "");
    Check(IsWlanAttached() == 0, "no device, no adapter");
}

// Checks the link with ethtool's output and, if it has no answer, with two log files.
void RunLink(const std::vector<std::string>& texts) {
    Turn turn;
    const std::vector<std::string> logs = {texts.size() > 1 ? texts[1] : "",
                                           texts.size() > 2 ? texts[2] : ""};
    turn.shell().Prints("sudo /usr/sbin/ethtool", {texts[0]});
    turn.shell().Prints("grep", logs);
    Check(IsWiredLinked() == LinkIn(texts[0], logs), "the link is that of tool or log");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string head = fuzz::TakeLine(input);
    if (head.size() < 2) {
        return 0;
    }
    const fuzz::Texts texts = fuzz::Sections(input);
    if (head[0] == 'y') {
        fuzz::RunLink(texts);
    } else if (head[0] == 'z') {
        fuzz::RunAdapter(texts);
    } else {
        const size_t letter = static_cast<unsigned char>(head[0]);
        const fuzz::ScanRow& row = fuzz::kScanRows[(letter - 'a') % fuzz::kScanRows.size()];
        fuzz::RunGet(row, head[1] == '1' ? "eth1" : "eth0", texts);
    }
    return 0;
}
