// address_values.cpp - values that are one IPv4 address or mask.
#include "velkctl/address_values.h"

#include "velkctl/ipv4.h"
#include "velkctl/terminal.h"

namespace velkctl {

Parsed AddressKind::Parse(std::span<const std::string> words) const {
    const std::string give = std::string("; give ").append(wanted_);
    if (words.empty()) {
        return Unparsable("no value given" + give);
    }
    if (words.size() > 1) {
        return Unparsable(std::to_string(words.size()) + " values given" + give);
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (takes_none_ && word == kNone) {
        return parsed;
    }
    const std::optional<uint32_t> address = ParseIpv4(word);
    if (!address || !takes_(*address)) {
        return Unparsable(Quoted(word) + " is not taken" + give);
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string AddressKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
