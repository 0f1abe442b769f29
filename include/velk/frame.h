// frame.h - functions of lib/entry, lib/restart and lib/base: lock, shell lines, interface restart.
#ifndef VELK_FRAME_H_
#define VELK_FRAME_H_

#include <string>

#include "velk/export.h"

struct _velk_request;

// Called directly, the functions of these headers may throw std::bad_alloc when memory runs out;
// through execute_velk_command() nothing is thrown. Their threads must not be cancelled meanwhile.

// Takes the lock that keeps the set and restart commands of different processes apart: an
// exclusive flock(2) on /var/tmp/vklib_lock. execute_velk_command() does this by itself; call it
// only to keep the library's writers out while you edit the same files by other means.
//
// Returns a positive descriptor that holds the lock until VkLibUnLock(), LIB_VELK_LOCKED when
// another open of the file holds it, LIB_VELK_FAILURE on any other failure. The descriptor is
// close-on-exec, so a program that you start meanwhile never keeps the lock.
//
// Side effects: creates the lock file with mode 0666, with any umask, if it is missing; it
// is never removed. Logs "VkLibLock indelible" whenever the file is already there, and
// "VkLibLock open2", "VkLibLock fchmod" or "VkLibLock flock" with errno when that call fails.
// A lock file that is a symbolic link is refused.
//
// In a sticky folder the owner of a file can replace it while it is locked, and the next caller
// would lock the new one. So root makes a lock file of another user's its own, with mode 0666; one
// that has other names is refused. A file that is replaced while it is being locked is given up
// after 100 tries. Both are logged as "VkLibLock open2", with EMLINK or ESTALE. Other users take
// the file as it is.
//
// While a program holds it, its own set and restart requests get LIB_VELK_LOCKED too: the lock
// belongs to the open file, see flock(2). Blocking: never waits for the lock.
VELK_API int VkLibLock();

// Gives the lock back and closes the descriptor that VkLibLock() returned. Does nothing for -1.
// A failing unlock is logged as "flock" with errno; the descriptor is closed all the same. Never
// blocks.
VELK_API void VkLibUnLock(int fd);

// Runs one line, a NUL-terminated text, with system(3). Returns LIB_VELK_SUCCESS if a shell was
// run, with any exit status of the command in it: callers detect a failed command only by reading
// the setting back. It shares the program's standard streams: its error messages appear there.
// Returns LIB_VELK_FAILURE, after logging "system" with errno, when system(3) itself failed; in a
// program that ignores SIGCHLD it always does, with ECHILD, although the line has run.
//
// Blocking: until the command has ended.
VELK_API int SystemCommand(const char* command);

// Puts an edited copy in place: runs "cat SOURCE > TARGET" and then "rm SOURCE". Copying with cat
// instead of renaming keeps the target's inode, owner and mode. The paths go to the shell
// unchanged. Returns the result of the removal as SystemCommand() gives it; a failed copy is not
// seen. A source that does not exist leaves the target empty.
//
// Paths too long for the 256-byte command line give LIB_VELK_INVALID_PARAMETER with a log line, and
// nothing is run.
//
// Blocking: until both commands have ended.
VELK_API int FileCopyAndDelete(const std::string& source, const std::string& target);

// The functions of the other headers that say they edit a file do it through a copy in /var/tmp
// named after the file: a new one is written line by line, an existing file is removed, and put
// in place with the two lines of FileCopyAndDelete(). The copy has mode 0600 with any umask,
// 0644 in a program with different real and effective users, because the shell reads it as the real
// one. Every line of an edited file ends in a newline, also a last one without one.
//
// After the first line the file is checked. A file that was cut, empty or a shorter piece of the
// new text, as when cat(1) is killed or cannot be started, is written from the copy, in place, and
// flushed to the disk; this is logged as "FileEdit mended" with the path. Where that fails,
// "FileEdit mend" is logged with errno, LIB_VELK_FAILURE returned, and the copy stays: it has the
// only whole text. A file that is as it was stays so, and LIB_VELK_SUCCESS is returned. Through
// execute_velk_command() both lines inherit the set/restart lock: when the caller is killed, nobody
// else sets before the tool has ended. Nothing else that the library starts inherits it; in a
// program with threads, a program that another thread starts at that moment does.
//
// A failure before the edit copy is put in place leaves the file unchanged; if the edit copy was
// open, it remains, normally empty. If it cannot be written in full, "FileEdit
// write" is logged with errno, the copy removed and LIB_VELK_FAILURE returned. A read that fails
// after the file's first block counts as the end of the file: the text read until then replaces
// it. Two editors of one file at once would mix their copies: direct callers hold the lock of
// VkLibLock().
//
// A get that meets an empty file, of those that are never empty but while a set replaces their
// text, reads it again for up to 50 milliseconds: /etc/network/interfaces, /etc/dhclient.conf,
// /etc/dhclient-exit-hooks, /var/cron/tabs/root and /var/libvelk/libvelk.

// Returns whether a text holds nothing but the digits '0' to '9': 1 or 0. A null pointer and the
// empty text give 1. No sign, blank or decimal point is accepted. Never blocks, touches nothing.
VELK_API unsigned isStrNum(const char* text);

// Restarts the interface of the request (command 1): RestartWired() for "eth0", RestartWireless()
// for any other name. `out` is not used by any of the three. Failing ifdown(8) and ifup(8) runs are
// not noticed, as SystemCommand() does not notice them.
VELK_API int Restart(const _velk_request& request, char* out);

// Runs "sudo ifdown NAME", sleep(1) and "sudo ifup NAME". With a wireless adapter attached it then
// sleeps 5 seconds, and when the wired port has a link, restarts "eth1" with ifdown and ifup after
// a sleep of 30 seconds, twice. Returns the result of the first ifup's command line.
//
// The seconds are full ones, also if signal handlers of the program interrupt sleep(3).
//
// Blocking: the commands and 1 second; with an adapter 6 seconds, with adapter and cable 66, and
// asking for the link as IsWiredLinked() does.
VELK_API int RestartWired(const _velk_request& request, char* out);

// The first parameter byte VELK_RESTART_NOTIFY_ONLY only notifies the wireless daemon, and with a
// wired link does nothing.
// Any other byte runs "sudo ifdown NAME" and sleep(1); then, with a wired link, "sudo ifconfig NAME
// up", and without one "sudo ifup NAME &" in the background before the daemon is notified.
//
// Returns LIB_VELK_NO_ADAPTER, with nothing done, without a supported adapter; LIB_VELK_SUCCESS
// if nothing was to be notified; otherwise the result of the last step: of the command line, or of
// SendWlanRequestMessage().
// Blocking: the commands, 1 second, and asking for the link as IsWiredLinked() does.
VELK_API int RestartWireless(const _velk_request& request, char* out);

#endif  // VELK_FRAME_H_
