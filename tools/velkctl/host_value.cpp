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

std::string HostKind::Wanted() const {
    return "a host name or address such as 192.168.0.1, or none";
}

Parsed HostKind::Parse(std::span<const std::string> words) const {
    if (std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(std::move(problem));
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (word == kNone) {
        return parsed;
    }
    if (!IsHostName(word)) {
        return Unparsable(Quoted(word) + " is not a host name" + Give());
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string HostKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
