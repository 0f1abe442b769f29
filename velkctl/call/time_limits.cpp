// time_limits.cpp - how long a user wants to wait.
#include "velkctl/call/time_limits.h"

#include <charconv>
#include <string>

namespace velkctl {
namespace {

constexpr int kLongest = 24 * 60 * 60;

// Sets `seconds` to what an option asks for; false, after refusing it, when that is no number.
bool TakeSeconds(const char* option, const std::optional<std::string>& word,
                 const Invocation& invocation, Report& report, int& seconds) {
    if (!word) {
        return true;
    }
    const char* end = word->data() + word->size();
    const auto [stop, error] = std::from_chars(word->data(), end, seconds);
    if (error == std::errc() && stop == end && seconds >= 1 && seconds <= kLongest) {
        return true;
    }
    report.Refuse(std::string(option) + ": " + invocation.Shown(*word) +
                  " is not a time; give whole seconds, 1 to 86400");
    return false;
}

}  // namespace

std::optional<Patience> PatienceOf(const Invocation& invocation, Report& report) {
    Patience patience;
    if (!TakeSeconds("--wait", invocation.wait, invocation, report, patience.wait_seconds) ||
        !TakeSeconds("--timeout", invocation.timeout, invocation, report,
                     patience.timeout_seconds)) {
        return std::nullopt;
    }
    return patience;
}

}  // namespace velkctl
