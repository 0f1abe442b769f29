// interfaces_checks.h - an interface's stanza in /etc/network/interfaces, as the library finds it.
#ifndef VELKCTL_DOCTOR_INTERFACES_CHECKS_H_
#define VELKCTL_DOCTOR_INTERFACES_CHECKS_H_

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"

namespace velkctl {

// Returns the first line from `begin` on and before `end` for which the condition is true.
template <typename Condition>
std::optional<size_t> FindLine(const Lines& lines, size_t begin, size_t end, Condition condition) {
    const auto last = lines.begin() + static_cast<Lines::difference_type>(end);
    const auto line =
        std::find_if(lines.begin() + static_cast<Lines::difference_type>(begin), last, condition);
    return line == last ? std::nullopt : std::optional(static_cast<size_t>(line - lines.begin()));
}

// The interface's first stanza: the line of its header, and the line after its last one.
struct Stanza {
    std::string interface;
    size_t header;
    size_t end;
};
std::optional<Stanza> FindStanza(const Lines& lines, const std::string& interface);

// The lines for address, netmask and gateway.
Findings CheckValueLines(const Lines& lines, const Stanza& stanza);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_INTERFACES_CHECKS_H_
