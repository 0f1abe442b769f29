// stanza.cpp - an interface's stanza in /etc/network/interfaces, as the library finds it.
#include "velkctl/doctor/stanza.h"

#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"

namespace velkctl {

std::optional<size_t> FindLine(const Lines& lines, size_t begin, size_t end,
                               const std::function<bool(std::string_view)>& holds) {
    for (size_t i = begin; i < end; ++i) {
        if (holds(lines[i])) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<Stanza> FindStanza(const Lines& lines, const std::string& interface) {
    const auto is_header = [start = velk::StanzaHeader(interface)](std::string_view line) {
        return line.starts_with(start);
    };
    const auto is_start = [](std::string_view line) {
        return line.starts_with(velk::kStanzaStart);
    };
    const std::optional<size_t> header = FindLine(lines, 0, lines.size(), is_header);
    if (!header) {
        return std::nullopt;
    }
    const std::optional<size_t> end = FindLine(lines, *header + 1, lines.size(), is_start);
    return Stanza{interface, *header, end.value_or(lines.size())};
}

std::optional<size_t> FindValueLine(const Lines& lines, const Stanza& stanza,
                                    std::string_view key) {
    return FindLine(lines, stanza.header + 1, stanza.end,
                    [key](std::string_view line) { return velk::Contains(line, key); });
}

}  // namespace velkctl
