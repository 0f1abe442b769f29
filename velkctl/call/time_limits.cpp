// time_limits.cpp - how long a user wants to wait.
#include "velkctl/call/time_limits.h"

#include <string>

#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr int kLongest = 24 * 60 * 60;

// Sets `seconds` to what an option asks for; false, after refusing it, when that is no number.
bool TakeSeconds(const char* option, const std::optional<std::string>& word,
                 const Invocation& invocation, Report& report, int& seconds) {
    if (!word) {
        return true;
    }
    if (const std::optional<int> number = ParseNumber(*word, 1, kLongest)) {
        seconds = *number;
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
