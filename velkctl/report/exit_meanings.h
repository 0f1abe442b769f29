// exit_meanings.h - what the exit statuses of velkctl mean.
#ifndef VELKCTL_REPORT_EXIT_MEANINGS_H_
#define VELKCTL_REPORT_EXIT_MEANINGS_H_

#include <array>
#include <string_view>

#include "velkctl/report/exit_status.h"

namespace velkctl {

// What to do where a result of the library has a status of its own.
inline constexpr std::string_view kLockedRemedy =
    "'--wait' tries again until the other program is done";
inline constexpr std::string_view kNoAdapterRemedy =
    "plug one in that /usr/local/share/apps/wlan/supportlist.ini names";
inline constexpr std::string_view kWiredLinkedRemedy =
    "pull the cable: wireless is for a device without one";

struct ExitMeaning {
    ExitStatus status;
    std::string_view words;
    std::string_view remedy;
};

inline constexpr std::array<ExitMeaning, 8> kExitMeanings{{
    {ExitStatus::kDone, "done", "nothing"},
    {ExitStatus::kFailed, "failed, or the doctor found something",
     "the message names what failed; 'velkctl doctor' looks for the cause"},
    {ExitStatus::kInvalid, "wrong usage, or a name or value that is not taken",
     "the message says what would be right; 'velkctl VERB --help' and 'velkctl describe NAME' too"},
    {ExitStatus::kLocked, "another program is changing settings", kLockedRemedy},
    {ExitStatus::kNoAdapter, "no supported wireless adapter is attached", kNoAdapterRemedy},
    {ExitStatus::kWiredLinked, "refused while the cable is in the wired port", kWiredLinkedRemedy},
    {ExitStatus::kNotHeld, "set, but the device does not hold the value",
     "the message has the likely cause; 'velkctl doctor' looks for more"},
    {ExitStatus::kTimedOut, "given up because it took too long",
     "give a longer --timeout; 'velkctl doctor' looks for a daemon that does not answer"},
}};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_EXIT_MEANINGS_H_
