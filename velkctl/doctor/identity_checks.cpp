// identity_checks.cpp - whether administrator and location reach the SNMP agent.
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/identity_directives.h"

namespace velkctl {
namespace {

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
                    .file = velk::kSnmpFile,
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

Finding OtherDirectiveWithin(const Directive& own, const Directive& other) {
    const std::string word(other.name);
    return {.subject = std::string(own.setting),
            .effect = "is cut for the SNMP agent when " + std::string(other.setting) + " is set",
            .what = "the text holds '" + word + "', from which on that set replaces a line",
            .file = velk::kIdentityFile,
            .remedy = "velkctl set " + std::string(own.setting) + " TEXT, without that word",
            .concerns = {{.id = own.id}, {.id = other.id}}};
}

// The text of the setting, as the library reads it: the first line counts, cut to the data area. A
// get would log a file that is gone meanwhile, and wait while nobody reads the system log.
std::string_view TextOf(const TextFile& file, const Directive& directive) {
    for (const std::string& line : file.lines) {
        if (line.starts_with(directive.key)) {
            const std::string_view text = std::string_view(line).substr(directive.key.size());
            return text.substr(0, VELK_DATA_SIZE - 1);
        }
    }
    return {};
}

// A set of one text replaces every line of the agent's file from the directive's name on, also the
// line of the other text.
Findings CheckTexts() {
    const TextFile file = ReadTextFile(velk::kIdentityFile);
    Findings findings;
    for (const Directive& own : kDirectives) {
        const std::string_view text = TextOf(file, own);
        for (const Directive& other : kDirectives) {
            if (own.id != other.id && velk::Contains(text, other.name)) {
                findings.push_back(OtherDirectiveWithin(own, other));
            }
        }
    }
    return findings;
}

Findings CheckDirectives() {
    const TextFile file = ReadTextFile(velk::kSnmpFile);
    if (file.state != FileState::kText) {
        return {};
    }
    Findings findings;
    for (const Directive& directive : kDirectives) {
        Append(findings, CheckDirective(file, directive));
    }
    return findings;
}

}  // namespace

Findings CheckIdentity() {
    Findings findings = CheckDirectives();
    Append(findings, CheckTexts());
    return findings;
}

}  // namespace velkctl
