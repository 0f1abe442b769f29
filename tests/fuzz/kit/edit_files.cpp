// edit_files.cpp - the files that sets edit: whose lines are whose, and what a usual file is.
#include "fuzz/kit/edit_files.h"

#include <algorithm>
#include <cctype>

#include "fuzz/kit/fuzz_device.h"
#include "velk.h"

namespace fuzz {
namespace {

using Texts = std::vector<std::string>;

bool Has(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

bool IsOwn(const EditedFile& file, const std::string& line) {
    return std::ranges::any_of(file.own, [&](const auto& text) { return Has(line, text); });
}

Texts Others(const EditedFile& file, Texts lines) {
    std::erase_if(lines, [&](const auto& line) { return IsOwn(file, line); });
    return lines;
}

std::string WithoutMarks(std::string line) {
    std::erase(line, '#');
    return line;
}

// The word that is replaced is the line's last, behind the client's name and its options.
bool EndsWithServer(const std::string& line) {
    size_t at = line.find("ntpdate");
    if (at == std::string::npos) {
        return false;
    }
    at += std::string_view("ntpdate").size();
    for (;;) {
        const size_t end = line.find(' ', at);
        const std::string word = line.substr(at, end - at);
        if (isalnum(static_cast<unsigned char>(word[0])) != 0) {
            return end == std::string::npos;
        }
        if (Has(word, ">") || end == std::string::npos) {
            return false;
        }
        at = end + 1;
    }
}

// Lines as they come to stand: one that ends with its server is followed by the next on the same.
Texts WithJoins(const Texts& lines) {
    Texts joined;
    bool is_open = false;
    for (const std::string& line : lines) {
        if (is_open) {
            joined.back() += "\n" + line;
        } else {
            joined.push_back(line);
        }
        is_open = EndsWithServer(line);
    }
    return joined;
}

// What follows a joined line's server is a line of its own, and stays unless it has a server too.
void CheckServerLine(const std::string& old_line, const std::string& new_line) {
    const std::string last = old_line.substr(old_line.rfind('\n') + 1);
    Check(Has(last, "ntpdate") || new_line.ends_with(last), "a joined line is as it was");
}

size_t CountOf(const Texts& lines, std::string_view text) {
    return static_cast<size_t>(
        std::ranges::count_if(lines, [&](const auto& line) { return Has(line, text); }));
}

bool IsOf(std::string_view text, std::string_view characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

constexpr char kDigits[] = "0123456789";
constexpr char kAddressText[] = "0123456789.";

// Switched off by a "#" in column one, or not at all.
bool IsPlainlySwitched(const std::string& line) {
    return line.find('#', 1) == std::string::npos || line.empty();
}

bool AllPlainlySwitched(const Texts& lines) {
    return std::ranges::all_of(lines, IsPlainlySwitched);
}

bool IsSwitch(const Setting& setting) {
    return setting.data == "\x01" || setting.data == "\x02";
}

// ---- one file each

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

// No blocks, and every command of the set in a line of its own.
bool AreUsualHooks(const std::string& text, std::string_view command) {
    const Texts lines = Lines(text);
    return AllPlainlySwitched(lines) && CountOf(lines, "if") == 0 && CountOf(lines, "fi") == 0 &&
           CountOf(lines, std::string(command) + " ") == CountOf(lines, command) &&
           std::ranges::all_of(lines, [&](const auto& line) {
               return !Has(line, command) || WithoutMarks(line).starts_with(command);
           });
}

// One statement on one line, which names the option as a word, last or before a comma, or not.
bool IsUsualRequest(const std::string& text, const std::string& option) {
    const Texts lines = Lines(text);
    if (CountOf(lines, "#") + CountOf(lines, "interface") + CountOf(lines, "{") +
                CountOf(lines, "}") !=
            0 ||
        CountOf(lines, "request") != 1 || CountOf(lines, ";") != 1) {
        return false;
    }
    const auto line = *std::ranges::find_if(
        lines, [](const auto& text_line) { return Has(text_line, "request"); });
    if (!line.starts_with("request routers") || !line.ends_with(";") || Has(line, "\t") ||
        line.find(';') != line.size() - 1) {
        return false;
    }
    const std::string rest = line.substr(std::string("request routers").size());
    const bool is_usual_rest = rest == ";" || rest == ", " + option + ";" ||
                               rest == ", " + option + ", broadcast-address;";
    return is_usual_rest && CountOf(lines, option) == (rest == ";" ? 0 : 1);
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
    for (size_t at = 0; at < slots.size(); at += 16) {
        const std::string slot = slots.substr(at, 16);
        const std::string text = slot.substr(0, slot.find('\0'));
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

std::string CopyOf(const EditedFile& file) {
    const std::string path = file.path;
    return "/var/tmp" + path.substr(path.rfind('/'));
}

void CheckOnlyOwnLines(const EditedFile& file, std::string_view before, std::string_view after) {
    const bool may_join = file.change == Change::kServer;
    const Texts old_lines = may_join ? WithJoins(Lines(before)) : Lines(before);
    const Texts new_lines = Lines(after);
    if (file.change == Change::kMoves) {
        Check(Others(file, old_lines) == Others(file, new_lines), "other lines are as they were");
        return;
    }
    Check(old_lines.size() == new_lines.size(), "there are as many lines as before");
    for (size_t i = 0; i < old_lines.size(); ++i) {
        if (!IsOwn(file, old_lines[i])) {
            Check(old_lines[i] == new_lines[i], "another line is as it was");
        } else if (file.change == Change::kSwitch) {
            Check(WithoutMarks(old_lines[i]) == WithoutMarks(new_lines[i]),
                  "a line is switched, not rewritten");
        } else if (may_join) {
            CheckServerLine(old_lines[i], new_lines[i]);
        }
    }
}

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
            return IsSwitch(setting) && AreUsualHooks(files[0], "/usr/sbin/avahi-autoipd") &&
                   Has(files[0], "/usr/sbin/avahi-autoipd");
        case VELK_CMD_DHCP_NOTICE:
            return AreUsualHooks(files[0], "/sbin/printdhcpnotice.pl") &&
                   AreUsualHooks(files[0], "/sbin/printdhcpstart.pl");
        case VELK_CMD_DHCP_NTP:
            return IsSwitch(setting) && IsUsualRequest(files[0], "ntp-servers") &&
                   AreUsualHooks(files[1], "/usr/bin/ntpdate");
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
