// stanza.h - an interface's stanza in /etc/network/interfaces, as the library finds it.
#ifndef VELKCTL_DOCTOR_STANZA_H_
#define VELKCTL_DOCTOR_STANZA_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "velkctl/files/text_file.h"

namespace velkctl {

// The first line at `begin` or behind it, and before `end`, of which the predicate holds.
std::optional<size_t> FindLine(const Lines& lines, size_t begin, size_t end,
                               const std::function<bool(std::string_view)>& holds);

// The interface's first stanza: its header and the end of its body.
struct Stanza {
    std::string interface;
    size_t header;
    size_t end;
};
std::optional<Stanza> FindStanza(const Lines& lines, const std::string& interface);

// The first line of the body that the library takes for the one with the key's value.
std::optional<size_t> FindValueLine(const Lines& lines, const Stanza& stanza, std::string_view key);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_STANZA_H_
