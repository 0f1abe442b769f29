// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usual_files.cpp - recognises files in the device's usual form.
#include "fuzz/kit/usual_files.h"

#include <algorithm>

#include "fuzz/kit/lines.h"
#include "support/paths.h"
#include "velk.h"

namespace fuzz {
namespace {

using testkit::kClockSetter;
using testkit::kFinishNotice;
using testkit::kLinkLocalDaemon;
using testkit::kStartNotice;

constexpr char kAddressText[] = "0123456789.";

size_t CountOf(const Texts& lines, std::string_view text) {
    return static_cast<size_t>(
        std::ranges::count_if(lines, [&](const auto& line) { return Has(line, text); }));
}

bool AllPlainlySwitched(const Texts& lines) {
    return std::ranges::all_of(lines, IsPlainlySwitched);
}

bool IsSwitch(const Setting& setting) {
    return setting.data == "\x01" || setting.data == "\x02";
}

// One static stanza of the interface, which holds the key or is followed by another stanza.
bool IsUsualStanza(const Setting& setting, std::string_view key, const std::string& text) {
    const Texts lines = Lines(text);
    const std::string header = "iface " + setting.interface + " inet ";
    const auto is_header = [&](const auto& line) { return line.starts_with(header); };
    const auto found = std::ranges::find_if(lines, is_header);
    if (setting.data.empty() || std::ranges::count_if(lines, is_header) != 1 ||
        !found->starts_with(header + "static")) {
        return false;
    }
    return std::any_of(found + 1, lines.end(), [&](const auto& line) {
        return line.starts_with("iface") || Has(line, key);
    });
}

bool IsUsualMethod(const Setting& setting, const std::string& interfaces,
                   const std::string& config) {
    return AllPlainlySwitched(Lines(config)) &&
           std::ranges::any_of(Lines(interfaces), [&](const auto& line) {
               return line.starts_with("iface " + setting.interface + " inet ");
           });
}

// True if there are no blocks and each of the set's commands starts its line, with or without a
// "#".
bool AreUsualHooks(const std::string& text, const std::string& command) {
    const Texts lines = Lines(text);
    return AllPlainlySwitched(lines) && CountOf(lines, "if") == 0 && CountOf(lines, "fi") == 0 &&
           std::ranges::all_of(lines, [&](const auto& line) {
               return !Has(line, command) || line.starts_with(command + " ") ||
                      line.starts_with("#" + command + " ");
           });
}

// One statement on one line, which names the option last or before a comma, or not.
bool IsUsualRequest(const std::string& text, const std::string& option) {
    const std::string start = "request routers";
    const Texts requests = {start + ";", start + ", " + option + ";",
                            start + ", " + option + ", broadcast-address;"};
    const Texts meaningful = {"#", "interface", "{", "}", "request", ";", option};
    size_t found = 0;
    for (const std::string& line : Lines(text)) {
        if (std::ranges::find(requests, line) != requests.end()) {
            ++found;
        } else if (std::ranges::any_of(meaningful, [&](auto& part) { return Has(line, part); })) {
            return false;
        }
    }
    return found == 1;
}

bool IsUsualNtpServer(const Setting& setting, const std::string& text) {
    const Texts lines = Lines(text);
    const bool is_address =
        !setting.data.empty() && IsOf(setting.data, kAddressText) && setting.data.front() != '.';
    return is_address && CountOf(lines, "ntpdate") > 0 &&
           std::ranges::all_of(lines, [](const auto& line) {
               return !Has(line, "ntpdate") ||
                      line == "0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log";
           });
}

bool AreUsualServers(const std::string& slots) {
    bool ended = false;
    for (size_t i = 0; i < kSlots; ++i) {
        const std::string text = TextIn(slots.substr(i * kSlotSize, kSlotSize));
        if (!IsOf(text, kAddressText) || (ended && !text.empty())) {
            return false;
        }
        ended = text.empty();
    }
    return true;
}

bool IsUsualSchedule(const std::string& data) {
    const auto type = static_cast<unsigned char>(data[0]);
    const auto value = static_cast<unsigned char>(data[1]);
    const std::string time = data.substr(2);
    if (time.size() != 5 || time[2] != ':' || !IsOf(time.substr(0, 2), kDigits)) {
        return false;
    }
    switch (type) {
        case VELK_SCHEDULE_HOURS:
            return time == "00:00";
        case VELK_SCHEDULE_DAILY:
            return value == 1;
        case VELK_SCHEDULE_WEEKLY:
            return value >= 1 && value <= 7;
        case VELK_SCHEDULE_MONTHLY:
            return true;
        default:
            return type == VELK_SCHEDULE_NONE && value == VELK_SCHEDULE_NONE && time == "00:00";
    }
}

}  // namespace

bool IsUsual(const Setting& setting, const std::vector<std::string>& files) {
    switch (setting.id) {
        case VELK_CMD_IP_ADDRESS:
            return IsUsualStanza(setting, "address ", files[0]);
        case VELK_CMD_NETMASK:
            return IsUsualStanza(setting, "netmask ", files[0]);
        case VELK_CMD_GATEWAY:
            return IsUsualStanza(setting, "gateway ", files[0]);
        case VELK_CMD_IP_METHOD:
            return IsUsualMethod(setting, files[0], files[1]);
        case VELK_CMD_APIPA:
            return IsSwitch(setting) && AreUsualHooks(files[0], kLinkLocalDaemon) &&
                   Has(files[0], kLinkLocalDaemon);
        case VELK_CMD_DHCP_NOTICE:
            return AreUsualHooks(files[0], kFinishNotice) && AreUsualHooks(files[0], kStartNotice);
        case VELK_CMD_DHCP_NTP:
            return IsSwitch(setting) && IsUsualRequest(files[0], "ntp-servers") &&
                   AreUsualHooks(files[1], kClockSetter);
        case VELK_CMD_DHCP_DNS:
            return IsSwitch(setting) && IsUsualRequest(files[0], "domain-name-servers") &&
                   AreUsualHooks(files[1], "make_resolv_conf");
        case VELK_CMD_NTP:
            return AllPlainlySwitched(Lines(files[0])) && Has(files[0], "ntpdate");
        case VELK_CMD_NTP_SERVER:
            return IsUsualNtpServer(setting, files[0]);
        case VELK_CMD_DNS:
            return AreUsualServers(setting.data);
        case VELK_CMD_WEB_UPDATE:
            return IsUsualSchedule(setting.data);
        default:
            return true;  // administrator and location take any text
    }
}

}  // namespace fuzz
