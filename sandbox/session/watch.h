// watch.h - shows what becomes of a device's files.
#ifndef SANDBOX_SESSION_WATCH_H_
#define SANDBOX_SESSION_WATCH_H_

namespace sandbox {

// Shows each change of a file of the device this process is on, as diff(1) does, as it happens.
// Does not return, but throws Failure.
[[noreturn]] void WatchFiles();

}  // namespace sandbox

#endif  // SANDBOX_SESSION_WATCH_H_
