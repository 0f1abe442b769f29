// frame.h - the inter-process lock and the shell helpers that every command stands on.
#ifndef VELK_FRAME_H_
#define VELK_FRAME_H_

#include <string>

#include "velk/export.h"

// Takes the lock that keeps the set and restart commands of different processes apart: an
// exclusive flock(2) on /var/tmp/vklib_lock. execute_velk_command() does this by itself; call it
// only to keep the library's writers out while you edit the same files by other means.
//
// Returns a positive descriptor that holds the lock until VkLibUnLock(), LIB_VELK_LOCKED when
// another open of the file holds it, LIB_VELK_FAILURE on any other failure. The descriptor is
// close-on-exec, so a program started meanwhile never keeps the lock.
//
// Side effects: creates the lock file with mode 0666, whatever the umask, when it is missing; it
// is never removed. Logs "VkLibLock indelible" whenever the file is already there, and
// "VkLibLock open2", "VkLibLock fchmod" or "VkLibLock flock" with errno when that call fails.
//
// Blocking: never waits for the lock.
VELK_API int VkLibLock();

// Gives the lock back and closes the descriptor that VkLibLock() returned. Does nothing for -1.
// A failing unlock is logged as "flock" with errno; the descriptor is closed all the same.
VELK_API void VkLibUnLock(int fd);

// Runs one line with system(3). Returns LIB_VELK_SUCCESS when a shell was run, whatever the exit
// status of the command in it: callers learn of a failed command only by what they read back.
// Returns LIB_VELK_FAILURE, after logging "system" with errno, when system(3) itself failed.
//
// Blocking: until the command has ended.
VELK_API int SystemCommand(const char* command);

// Puts an edited copy in place: runs "cat SOURCE > TARGET" and then "rm SOURCE". Copying with cat
// instead of renaming keeps the target's inode, owner and mode. The paths go to the shell as they
// stand. Returns the result of the removal as SystemCommand() gives it; a failed copy is not seen.
// A source that does not exist leaves the target empty.
//
// Paths too long for the 256-byte command line give LIB_VELK_INVALID_PARAMETER with a log line, and
// nothing is run.
//
// Blocking: until both commands have ended.
VELK_API int FileCopyAndDelete(const std::string& source, const std::string& target);

// Says whether a text holds nothing but the digits '0' to '9': 1 or 0. A null pointer and the
// empty text give 1. No sign, blank or decimal point is accepted. Never blocks, touches nothing.
VELK_API unsigned isStrNum(const char* text);

#endif  // VELK_FRAME_H_
