// identity_checks.cpp - whether administrator and location reach the SNMP agent.
#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

#include "frame/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"
#include "velkctl/places.h"

namespace velkctl {
namespace {

struct Directive {
    uint32_t id;
    std::string_view setting;
    std::string_view name;
};

constexpr std::array<Directive, 2> kDirectives{{
    {VELK_CMD_ADMINISTRATOR, "administrator", "syscontact"},
    {VELK_CMD_LOCATION, "location", "syslocation"},
}};

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(tolower(c)); });
    return lower;
}

Findings CheckDirective(const TextFile& file, const Directive& directive) {
    const std::string name(directive.name);
    Finding finding{.subject = std::string(directive.setting),
                    .effect = "does not reach the SNMP agent",
                    .what = "no line has the directive " + name,
                    .file = kSnmpFile,
                    .remedy = "add a line \"" + name + " unknown\"",
                    .concerns = {{.id = directive.id}}};
    for (size_t i = 0; i < file.lines.size(); ++i) {
        const std::string_view line = Trimmed(file.lines[i]);
        if (!velk::Contains(Lower(line), name)) {
            continue;
        }
        const bool is_comment = line.starts_with('#');
        if (!is_comment && velk::Contains(line, name)) {
            return {};
        }
        if (!is_comment) {
            finding.what = Excerpt(line) + " is not written in small letters";
            finding.line = i + 1;
            finding.remedy = "write " + name;
        }
    }
    return {finding};
}

}  // namespace

Findings CheckIdentity() {
    const TextFile file = ReadTextFile(kSnmpFile);
    if (file.state != FileState::kText) {
        return {};
    }
    Findings findings;
    for (const Directive& directive : kDirectives) {
        Append(findings, CheckDirective(file, directive));
    }
    return findings;
}

}  // namespace velkctl
