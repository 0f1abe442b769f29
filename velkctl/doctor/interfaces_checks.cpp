// interfaces_checks.cpp - whether the library finds its way about /etc/network/interfaces.
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/ipconf/interfaces_file.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/stanza.h"
#include "velkctl/doctor/value_line_checks.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

// All that stands in a stanza.
constexpr std::array<uint32_t, 4> kInStanza{VELK_CMD_IP_METHOD, VELK_CMD_IP_ADDRESS,
                                            VELK_CMD_NETMASK, VELK_CMD_GATEWAY};

// What every finding on a stanza as a whole has in common.
Finding About(const std::string& interface) {
    return {.subject = interface + ".method, " + interface + ".address, " + interface +
                       ".netmask and " + interface + ".gateway",
            .file = velk::kInterfacesFile,
            .concerns = ConcernsOf(kInStanza, interface),
            .hinders = Hinders::kSetting};
}

bool HasKnownMethod(std::string_view method) {
    return method.starts_with(velk::kStaticMethod) || method.starts_with(velk::kDhcpMethod);
}

bool IsAlmostHeader(std::string_view line, std::string_view interface) {
    const std::vector<std::string> words = WordsOf(line);
    return words.size() >= 3 && words[0] == velk::kStanzaStart && words[1] == interface &&
           words[2] == "inet" && !line.starts_with(velk::StanzaHeader(interface));
}

// Headers that ifup knows and the library does not.
Findings CheckHeaders(const Lines& lines, const std::string& interface) {
    Findings findings;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (!IsAlmostHeader(lines[i], interface)) {
            continue;
        }
        Finding finding = About(interface);
        finding.effect = "are not found in a stanza";
        finding.what = "the library does not recognise the header " + Excerpt(lines[i]);
        finding.line = i + 1;
        finding.remedy = "write \"" + velk::StanzaHeader(interface) +
                         "static\" or \"... dhcp\" in the first column, with single blanks";
        findings.push_back(finding);
    }
    return findings;
}

Finding NoStanza(const std::string& interface) {
    Finding finding = About(interface);
    finding.effect = "can be neither read nor set";
    finding.what =
        "no line begins with '" + velk::StanzaHeader(interface) + "static' or '... dhcp'";
    finding.remedy = "add a stanza that begins with one";
    return finding;
}

Findings CheckMethod(const Lines& lines, const Stanza& stanza) {
    const std::string header = velk::StanzaHeader(stanza.interface);
    const std::string_view method = std::string_view(lines[stanza.header]).substr(header.size());
    if (HasKnownMethod(method)) {
        return {};
    }
    Finding finding = About(stanza.interface);
    finding.effect = "cannot be read";
    finding.what = Excerpt(method) + " is neither static nor dhcp";
    finding.line = stanza.header + 1;
    finding.remedy = "velkctl set " + stanza.interface + ".method static, or dhcp";
    finding.hinders = Hinders::kReading;
    return {finding};
}

// A method and addresses are set in every stanza of the interface and read from the first.
Findings CheckSecondStanza(const Lines& lines, const Stanza& stanza) {
    const auto second = FindLine(lines, stanza.header + 1, lines.size(),
                                 [start = velk::StanzaHeader(stanza.interface)](
                                     std::string_view line) { return line.starts_with(start); });
    if (!second) {
        return {};
    }
    Finding finding = About(stanza.interface);
    finding.severity = Severity::kWarning;
    finding.effect = "are not read from a second stanza";
    finding.what = "only the one on line " + std::to_string(stanza.header + 1) + " counts";
    finding.line = *second + 1;
    finding.remedy = "make one stanza of the two";
    finding.hinders = Hinders::kNothing;
    return {finding};
}

Findings CheckInterface(const Lines& lines, const std::string& interface) {
    Findings findings = CheckHeaders(lines, interface);
    const std::optional<Stanza> stanza = FindStanza(lines, interface);
    if (!stanza) {
        return findings.empty() ? Findings{NoStanza(interface)} : findings;
    }
    Append(findings, CheckMethod(lines, *stanza));
    Append(findings, CheckValueLines(lines, *stanza));
    Append(findings, CheckSecondStanza(lines, *stanza));
    return findings;
}

}  // namespace

Findings CheckInterfaces() {
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    if (file.state != FileState::kText) {
        return {};
    }
    Findings findings = CheckInterface(file.lines, VELK_WIRED_INTERFACE);
    Append(findings, CheckInterface(file.lines, VELK_WIRELESS_INTERFACE));
    return findings;
}

}  // namespace velkctl
