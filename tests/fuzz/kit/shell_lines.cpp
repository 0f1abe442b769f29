// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_lines.cpp - every shell line that a request makes the library run.
#include "fuzz/kit/shell_lines.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>

#include "fuzz/kit/shell_words.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace fuzz {
namespace {

using testkit::kClientScript;
using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kSnmpFile;

const std::vector<std::string> kFixedLines = {
    "grep \"eth0: link\" /var/log/syslog/syslog_info.log.0 > /var/tmp/get_result",
    "grep \"eth0: link\" /var/log/syslog/syslog_info.log.1 > /var/tmp/get_result",
    "ifconfig > /var/tmp/get_result",
    "rm -f /tmp/oldIPAddress",
    "rm /var/libvelk/ntp.log",
    "rm /var/tmp/get_result",
    "sudo /etc/init.d/snmpd restart > /dev/null 2>&1",
    "sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result",
    "sudo ethtool -s eth0 autoneg on",
    "sudo ethtool -s eth0 speed 10 duplex full autoneg off",
    "sudo ethtool -s eth0 speed 10 duplex half autoneg off",
    "sudo ethtool -s eth0 speed 100 duplex full autoneg off",
    "sudo ethtool -s eth0 speed 100 duplex half autoneg off",
    "sudo ethtool eth0 > /var/tmp/get_result",
    "sudo ifconfig eth1 up",
    "sudo ifdown eth0",
    "sudo ifdown eth1",
    "sudo ifup eth0",
    "sudo ifup eth1",
    "sudo ifup eth1 &",
};

// Each is edited in a copy that takes its place.
const std::vector<std::string> kEditedFiles = {
    kExitHooks, kDhcpConfigFile, kInterfacesFile, kClientScript, kCrontab, kIdentityFile,
};

const std::vector<std::string_view> kSubstitutions = {
    "s/syscontact.*/syscontact ",
    "s/syslocation.*/syslocation ",
};

std::set<std::string> AllLines() {
    std::set<std::string> lines(kFixedLines.begin(), kFixedLines.end());
    for (const std::string& file : kEditedFiles) {
        const std::string copy = testkit::CopyOf(file);
        lines.insert(std::string("cat ").append(copy).append(" > ").append(file));
        lines.insert("rm " + copy);
    }
    return lines;
}

// Returns the text that sed(1) reads from the end of a substitution; nothing if the end has more
// than a text. sed itself refuses a line end in the text.
std::optional<std::string> Replacement(std::string_view end) {
    if (end == "\"\"/") {
        return "";  // the SNMP daemon's notation of an empty text
    }
    std::string text;
    for (; !end.empty() && end != "/"; end.remove_prefix(1)) {
        if (end[0] == '\\') {
            end.remove_prefix(1);
            if (end.empty() || std::string_view("\\&\"/").find(end[0]) == std::string_view::npos) {
                return std::nullopt;
            }
        } else if (end[0] == '/' || end[0] == '&') {
            return std::nullopt;
        }
        text += end[0];
    }
    return end.empty() ? std::nullopt : std::optional(text);
}

bool PutsText(std::string_view script, const std::vector<std::string>& texts) {
    for (const std::string_view start : kSubstitutions) {
        if (script.starts_with(start)) {
            const auto text = Replacement(script.substr(start.size()));
            return text && std::ranges::find(texts, *text) != texts.end();
        }
    }
    return false;
}

bool IsSubstitution(const std::string& line, const std::vector<std::string>& texts) {
    const auto words = ShellWords(line);
    return words && words->size() == 5 && (*words)[0] == "sudo" && (*words)[1] == "sed" &&
           (*words)[2] == "-i" && PutsText((*words)[3], texts) && (*words)[4] == kSnmpFile;
}

}  // namespace

bool IsKnownLine(const std::string& line, const std::vector<std::string>& texts) {
    static const std::set<std::string> lines = AllLines();
    return lines.contains(line) || IsSubstitution(line, texts);
}

}  // namespace fuzz
