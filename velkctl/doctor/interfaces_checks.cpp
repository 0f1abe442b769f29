// interfaces_checks.cpp - whether the library finds its way about /etc/network/interfaces.
#include "velkctl/doctor/interfaces_checks.h"

#include "lib/base/paths.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

Finding AboutStanza(const std::string& interface) {
    return {.subject = interface + ".method, " + interface + ".address, " + interface +
                       ".netmask and " + interface + ".gateway",
            .file = velk::kInterfacesFile,
            .affected = SettingsHeldIn(velk::kInterfacesFile, interface),
            .impact = Impact::kSetting};
}

bool HasKnownMethod(std::string_view method) {
    return method.starts_with(velk::kStaticMethod) || method.starts_with(velk::kDhcpMethod);
}

// True if ifup takes the line for a header and the library does not.
bool IsAlmostHeader(std::string_view line, std::string_view interface) {
    const std::vector<std::string> words = WordsOf(line);
    return words.size() >= 3 && words[0] == velk::kStanzaStart && words[1] == interface &&
           words[2] == "inet" && !line.starts_with(velk::StanzaHeader(interface));
}

Findings CheckHeaders(const Lines& lines, const std::string& interface) {
    Findings findings;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (IsAlmostHeader(lines[i], interface)) {
            findings.push_back(AboutStanza(interface).At(i).Problem(
                "are not found in a stanza",
                "the library does not recognise the header " + Excerpt(lines[i]),
                "write \"" + velk::StanzaHeader(interface) +
                    "static\" or \"... dhcp\" in the first column, with single blanks"));
        }
    }
    return findings;
}

Findings CheckInterface(const Lines& lines, const std::string& interface) {
    const Finding about = AboutStanza(interface);
    const std::string header = velk::StanzaHeader(interface);
    Findings findings = CheckHeaders(lines, interface);
    const std::optional<Stanza> stanza = FindStanza(lines, interface);
    if (!stanza) {
        return findings.empty() ? Findings{about.Problem(
                                      "can be neither read nor set",
                                      "no line begins with '" + header + "static' or '... dhcp'",
                                      "add a stanza that begins with one")}
                                : findings;
    }
    const std::string_view method = std::string_view(lines[stanza->header]).substr(header.size());
    if (!HasKnownMethod(method)) {
        findings.push_back(about.At(stanza->header)
                               .With(Impact::kReading)
                               .Problem("cannot be read",
                                        Excerpt(method) + " is neither static nor dhcp",
                                        "velkctl set " + interface + ".method static, or dhcp"));
    }
    Append(findings, CheckValueLines(lines, *stanza));
    // Method and addresses are set in every stanza of the interface and read from the first.
    if (const auto second =
            FindLine(lines, stanza->header + 1, lines.size(),
                     [&](std::string_view line) { return line.starts_with(header); })) {
        findings.push_back(
            about.At(*second)
                .With(Impact::kNothing)
                .Warning("are not read from a second stanza",
                         "only the one on line " + std::to_string(stanza->header + 1) + " counts",
                         "make one stanza of the two"));
    }
    return findings;
}

}  // namespace

std::optional<Stanza> FindStanza(const Lines& lines, const std::string& interface) {
    const auto starts_with = [](std::string_view start) {
        return [start](std::string_view line) { return line.starts_with(start); };
    };
    const std::string start = velk::StanzaHeader(interface);
    const auto header = FindLine(lines, 0, lines.size(), starts_with(start));
    if (!header) {
        return std::nullopt;
    }
    const auto end = FindLine(lines, *header + 1, lines.size(), starts_with(velk::kStanzaStart));
    return Stanza{interface, *header, end.value_or(lines.size())};
}

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
