// time_server.h - the router's time server.
#ifndef SANDBOX_HARDWARE_TIME_SERVER_H_
#define SANDBOX_HARDWARE_TIME_SERVER_H_

namespace sandbox {

// Answers time queries (SNTP, RFC 4330) with the machine's time at every address of this network.
// Does not return, but throws Failure. A packaged server would set the clock, or take the place of
// the machine's own.
[[noreturn]] void ServeTime();

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_TIME_SERVER_H_
