// host_value.cpp - values that name a host.
#include "velkctl/settings/host_value.h"

#include <algorithm>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "lib/base/words.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

constexpr size_t kLongestName = 253;  // the longest host name, see hostname(7)
constexpr size_t kLongestLabel = 63;

bool IsNameCharacter(char c) {
    return velk::IsLetterOrDigit(c) || c == '-' || c == '_';
}

bool IsLabel(std::string_view label) {
    return !label.empty() && label.size() <= kLongestLabel &&
           std::ranges::all_of(label, IsNameCharacter);
}

// Returns the part after the last dot, which is a number in an address and in no name.
std::string_view LastLabel(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

bool IsNumber(std::string_view label) {
    return label.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsIpv6(const std::string& word) {
    in6_addr address{};
    return word.find('\0') == std::string::npos && inet_pton(AF_INET6, word.c_str(), &address) == 1;
}

// A name that begins with a sign would be an option of the program that gets it.
bool BeginsLikeName(std::string_view word) {
    return !word.empty() && velk::IsLetterOrDigit(word.front());
}

// A dot at the end says that the name is whole.
std::string_view WithoutEndDot(std::string_view name) {
    return name.substr(0, name.size() - (name.ends_with('.') ? 1 : 0));
}

bool IsHostName(std::string_view word) {
    if (word.size() > kLongestName || !BeginsLikeName(word)) {
        return false;
    }
    std::string_view rest = WithoutEndDot(word);
    while (rest.find('.') != std::string_view::npos) {
        if (!IsLabel(rest.substr(0, rest.find('.')))) {
            return false;
        }
        rest.remove_prefix(rest.find('.') + 1);
    }
    return IsLabel(rest);
}

// Returns the problem with a word, to follow it in a message; empty if none.
std::string HostProblem(const std::string& word) {
    if (const std::optional<uint32_t> address = ParseIpv4(word)) {
        return std::string(HostAddressProblem(*address));
    }
    if (BeginsLikeName(word) && IsIpv6(word)) {
        return {};
    }
    if (!IsHostName(word)) {
        return "is not a host name";
    }
    return IsNumber(LastLabel(WithoutEndDot(word))) ? NotIpv4Problem(word, "an IPv4 address") : "";
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
    if (const std::string problem = HostProblem(word); !problem.empty()) {
        return Unparsable(Quoted(word) + " " + problem + Give());
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string HostKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
