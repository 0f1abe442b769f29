// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_answers.cpp - the expected answers of gets that read files.
#include "fuzz/kit/file_answers.h"

#include <algorithm>
#include <regex>

#include "fuzz/kit/blocks.h"
#include "fuzz/kit/edit_files.h"
#include "support/paths.h"
#include "velk.h"

namespace fuzz {
namespace {

using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kLinkLocalDaemon;

Answer OnOff(bool is_on) {
    return {true, is_on ? "\1" : "\2"};
}

// Returns the rest of the first line that begins with the key.
Answer KeyedText(const std::string& text, const std::string& key) {
    for (const std::string& line : Lines(text)) {
        if (line.starts_with(key)) {
            return {true, TextIn(line.substr(key.size()))};
        }
    }
    return {true, ""};
}

std::optional<std::string> FirstWith(const std::string& text, std::string_view word) {
    const Texts lines = Lines(text);
    const auto found = std::ranges::find_if(lines, [&](auto& line) { return Has(line, word); });
    return found == lines.end() ? std::nullopt : std::optional(*found);
}

bool BeginsWith(const std::string& text, const std::regex& form, std::smatch& parts) {
    return std::regex_search(text, parts, form, std::regex_constants::match_continuous);
}

Answer Schedule(char type, int value, const std::string& time) {
    return {true, std::string{type, static_cast<char>(value)} + time};
}

// Reads the first request of the interface or of everyone, in a statement of one line.
std::optional<Answer> RequestFrom(const std::string& interface, const std::string& text,
                                  std::string_view option) {
    static const std::regex kUsual(R"(\t?request ([a-z-]+, )*[a-z-]+;)");
    constexpr size_t kLongest = 200;  // longer lines are unusual, and a match would take long
    const Texts lines = Lines(text);
    const auto owners = OwnersOf(kDhcpConfigFile, interface, lines);
    if (!owners) {
        return std::nullopt;
    }
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool is_off = lines[i].starts_with('#') && !interface.empty();
        if ((*owners)[i] == Owner::kOther || is_off || !Has(lines[i], "request")) {
            continue;
        }
        const bool is_usual = lines[i].size() <= kLongest && std::regex_match(lines[i], kUsual);
        return is_usual ? std::optional(OnOff(Has(lines[i], option))) : std::nullopt;
    }
    return OnOff(false);
}

bool IsComment(const std::string& line, std::string_view word) {
    return line.find('#') < line.find(word);
}

}  // namespace

std::optional<Answer> AdministratorFrom(const std::string& /*interface*/, const Texts& texts) {
    return KeyedText(texts[0], "ADMINISTRATOR=");
}

std::optional<Answer> LocationFrom(const std::string& /*interface*/, const Texts& texts) {
    return KeyedText(texts[0], "LOCATION=");
}

std::optional<Answer> NtpMethodFrom(const std::string& /*interface*/, const Texts& texts) {
    return OnOff(std::ranges::any_of(Lines(texts[0]), [](const auto& line) {
        return Has(line, "ntpdate") && !IsComment(line, "ntpdate");
    }));
}

std::optional<Answer> NtpServerFrom(const std::string& /*interface*/, const Texts& texts) {
    static const std::regex kUsual("ntpdate -u ([0-9][0-9.]{0,14}) > ");
    const auto line = FirstWith(texts[0], "ntpdate");
    if (!line) {
        return Answer{true, ""};
    }
    const std::string client = line->substr(line->find("ntpdate"));
    std::smatch parts;
    return BeginsWith(client, kUsual, parts) ? std::optional(Answer{true, parts[1]}) : std::nullopt;
}

// The last line decides; the client's words come after a date.
std::optional<Answer> NtpResultFrom(const std::string& /*interface*/, const Texts& texts) {
    constexpr size_t kDateSize = 11;
    const Texts lines = Lines(texts[0]);
    return OnOff(!lines.empty() &&
                 lines.back().find("time server", kDateSize) != std::string::npos);
}

std::optional<Answer> ScheduleFrom(const std::string& /*interface*/, const Texts& texts) {
    static const std::regex kHours(R"(\d\d? \*/(\d\d?) \* \* \* perl )");
    static const std::regex kDaily(R"((\d\d?) (\d\d?) \* \* \* perl )");
    static const std::regex kWeekly(R"((\d\d?) (\d\d?) \* \* ([0-6]) perl )");
    static const std::regex kMonthly(R"((\d\d?) (\d\d?) (\d\d?) (\*|1,4-12|1,8) \* perl )");
    const auto line = FirstWith(texts[0], "web_contents_updater");
    if (!line) {
        return Schedule(VELK_SCHEDULE_NONE, VELK_SCHEDULE_NONE, "00:00");
    }
    std::smatch parts;
    if (BeginsWith(*line, kHours, parts)) {
        return Schedule(VELK_SCHEDULE_HOURS, std::stoi(parts[1]), "00:00");
    }
    if (BeginsWith(*line, kDaily, parts)) {
        return Schedule(VELK_SCHEDULE_DAILY, 1, parts.str(2) + ":" + parts.str(1));
    }
    if (BeginsWith(*line, kWeekly, parts)) {
        return Schedule(VELK_SCHEDULE_WEEKLY, std::stoi(parts[3]) + 1,
                        parts.str(2) + ":" + parts.str(1));
    }
    if (BeginsWith(*line, kMonthly, parts)) {
        return Schedule(VELK_SCHEDULE_MONTHLY, std::stoi(parts[3]),
                        parts.str(2) + ":" + parts.str(1));
    }
    return std::nullopt;
}

std::optional<Answer> DhcpNtpFrom(const std::string& interface, const Texts& texts) {
    return RequestFrom(interface, texts[0], "ntp-servers");
}

std::optional<Answer> DhcpDnsFrom(const std::string& interface, const Texts& texts) {
    return RequestFrom(interface, texts[0], "domain-name-servers");
}

// The setting is on if a command of the interface is not switched off.
std::optional<Answer> ApipaFrom(const std::string& interface, const Texts& texts) {
    static const std::regex kUsual(R"(#?([^#/]{0,40}[ \t])?/usr/sbin/avahi-autoipd )");
    const Texts lines = Lines(texts[0]);
    const auto owners = OwnersOf(kExitHooks, interface, lines);
    if (!owners) {
        return std::nullopt;
    }
    bool is_on = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        std::smatch parts;
        if (!Has(lines[i], kLinkLocalDaemon)) {
            continue;
        }
        if (!BeginsWith(lines[i], kUsual, parts)) {
            return std::nullopt;
        }
        is_on = is_on || ((*owners)[i] != Owner::kOther && !lines[i].starts_with('#'));
    }
    return OnOff(is_on);
}

std::optional<Answer> DnsFrom(const std::string& /*interface*/, const Texts& texts) {
    static const std::regex kUsual("nameserver ([0-9.]{1,15})");
    std::string slots;
    for (const std::string& line : Lines(texts[0])) {
        std::smatch parts;
        if (!line.starts_with("nameserver") || slots.size() == kSlots * kSlotSize) {
            continue;
        }
        if (!std::regex_match(line, parts, kUsual)) {
            return std::nullopt;
        }
        std::string slot = parts[1];
        slot.resize(kSlotSize);
        slots += slot;
    }
    return Answer{true, slots};
}

std::optional<Answer> IpMethodFrom(const std::string& interface, const Texts& texts) {
    const std::string header = "iface " + interface + " inet ";
    for (const std::string& line : Lines(texts[0])) {
        if (line.starts_with(header + "static")) {
            return Answer{true, "\1"};
        }
        if (line.starts_with(header + "dhcp")) {
            return Answer{true, "\2"};
        }
        if (line.starts_with(header)) {
            break;
        }
    }
    return Answer{false, ""};
}

std::string StaticValue(const std::string& interface, const std::string& text,
                        std::string_view key) {
    const std::string header = "iface " + interface + " inet ";
    bool is_inside = false;
    for (const std::string& line : Lines(text)) {
        if (is_inside && line.starts_with("iface")) {
            return "";
        }
        if (is_inside && Has(line, key)) {
            return TextIn(line.substr(line.find(key) + key.size()));
        }
        is_inside = is_inside || line.starts_with(header);
    }
    return "";
}

}  // namespace fuzz
