// exit_status.h - how velkctl ends, for the scripts that call it.
#ifndef VELKCTL_REPORT_EXIT_STATUS_H_
#define VELKCTL_REPORT_EXIT_STATUS_H_

namespace velkctl {

// The numbers are the statuses the process ends with: scripts depend on them.
enum class ExitStatus : int {
    kDone = 0,
    kFailed = 1,
    kInvalid = 2,  // wrong usage, or a name or value that is not taken
    kLocked = 3,
    kNoAdapter = 4,
    kWiredLinked = 5,
    kNotHeld = 6,   // set, but the device does not hold the value
    kTimedOut = 7,  // given up while the library was still at it
};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_EXIT_STATUS_H_
