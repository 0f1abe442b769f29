// daemon_process.h - a daemon on the device that keeps its number in a file.
#ifndef SANDBOX_PROCESS_DAEMON_PROCESS_H_
#define SANDBOX_PROCESS_DAEMON_PROCESS_H_

namespace sandbox {

// Ends it and removes the file. Returns when it has ended, or was not running.
void StopDaemon(const char* pid_file);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_DAEMON_PROCESS_H_
