// value_kinds.h - how the values of settings are written in words and lie in the data bytes.
#ifndef VELKCTL_VALUE_KINDS_H_
#define VELKCTL_VALUE_KINDS_H_

#include <span>
#include <string>

#include "velkctl/data.h"

namespace velkctl {

// One form that values have. What Print shows, Parse takes.
struct ValueKind {
    Parsed (*parse)(std::span<const std::string> words);
    std::string (*print)(const Data& data);  // one line without its end, safe for a terminal
};

// One to three IPv4 addresses, or "none", in slots of 16 bytes.
Parsed ParseServerList(std::span<const std::string> words);
std::string PrintServerList(const Data& data);

inline constexpr ValueKind kServerList{ParseServerList, PrintServerList};

}  // namespace velkctl

#endif  // VELKCTL_VALUE_KINDS_H_
