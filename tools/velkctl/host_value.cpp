// host_value.cpp - values that name a host.
#include "velkctl/host_value.h"

#include <algorithm>

#include "frame/words.h"
#include "velkctl/terminal.h"

namespace velkctl {
namespace {

constexpr size_t kLongestName = 253;  // of a host, see hostname(7)

bool IsNameCharacter(char c) {
    return velk::IsLetterOrDigit(c) || std::string_view(".-:_").find(c) != std::string_view::npos;
}

// One that begins with a sign would be an option of the program that gets it.
bool IsHostName(std::string_view word) {
    return !word.empty() && word.size() <= kLongestName && velk::IsLetterOrDigit(word.front()) &&
           std::ranges::all_of(word, IsNameCharacter);
}

}  // namespace

Parsed HostKind::Parse(std::span<const std::string> words) const {
    const std::string give = "; give a host name or address such as 192.168.0.1, or none";
    if (words.empty()) {
        return Unparsable("no value given" + give);
    }
    if (words.size() > 1) {
        return Unparsable(std::to_string(words.size()) + " values given" + give);
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (word == kNone) {
        return parsed;
    }
    if (!IsHostName(word)) {
        return Unparsable(Quoted(word) + " is not a host name" + give);
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string HostKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
