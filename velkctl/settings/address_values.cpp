// address_values.cpp - values that are one IPv4 address or mask.
#include "velkctl/settings/address_values.h"

#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {

std::string AddressKind::Wanted() const {
    return std::string(wanted_)
        .append(" such as ")
        .append(example_)
        .append(takes_none_ ? ", or none" : "");
}

std::string AddressKind::Problem(const std::string& word) const {
    const std::optional<uint32_t> address = ParseIpv4(word);
    return address ? std::string(problem_(*address)) : NotIpv4Problem(word, wanted_);
}

Parsed AddressKind::Parse(std::span<const std::string> words) const {
    if (std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(std::move(problem));
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (takes_none_ && word == kNone) {
        return parsed;
    }
    if (const std::string problem = Problem(word); !problem.empty()) {
        return Unparsable(Quoted(word) + " " + problem + Give());
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string AddressKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
