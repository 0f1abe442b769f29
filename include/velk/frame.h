// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// frame.h - functions of lib/entry, lib/restart and lib/base: lock, shell lines, interface restart.
#ifndef VELK_FRAME_H_
#define VELK_FRAME_H_

#include <string>

#include "velk/export.h"

struct _velk_request;

// Called directly, the functions of these headers may throw std::bad_alloc if memory runs out;
// through execute_velk_command() nothing is thrown. Their threads must not be cancelled meanwhile.

// Takes the lock that keeps the set and restart commands of different processes apart: an
// exclusive flock(2) on /var/tmp/vklib_lock. execute_velk_command() does this by itself; call it
// only to keep the library's writers out while the same files are edited by other means.
//
// Returns a positive descriptor that holds the lock until VkLibUnLock(), LIB_VELK_LOCKED if
// another open of the file holds it, LIB_VELK_FAILURE on any other failure. The descriptor is
// close-on-exec, so a program that the caller starts meanwhile never keeps the lock.
//
// Side effects: creates the lock file with mode 0666, with any umask, if it is missing; it
// is never removed. Logs "VkLibLock indelible" if the file already exists, and
// "VkLibLock open2", "VkLibLock fchmod" or "VkLibLock flock" with errno if that call fails.
// A lock file that is a symbolic link is refused.
//
// In a sticky folder the owner of a file can replace it while it is locked, and the next caller
// would lock the new one. So root becomes the owner of a lock file of another user and sets its
// mode to 0666. A file that has other names is refused. A file that is replaced while it is being
// locked is released, and the new one is tried, up to 100 times. Both failures are logged as
// "VkLibLock open2", with EMLINK or ESTALE. Other users take the file as it is.
//
// While a program holds it, its own set and restart requests get LIB_VELK_LOCKED too: the lock
// belongs to the open file, see flock(2). Blocking: never waits for the lock.
VELK_API int VkLibLock();

// Releases the lock and closes the descriptor that VkLibLock() returned. Does nothing for -1.
// A failing unlock is logged as "flock" with errno; the descriptor is closed nevertheless. Never
// blocks.
VELK_API void VkLibUnLock(int fd);

// Runs one line, a NUL-terminated text, with system(3). Returns LIB_VELK_SUCCESS if a shell was
// run, with any exit status of the command in it: callers detect a failed command only by reading
// the setting back. The command shares the program's standard streams: its error messages appear
// there. Returns LIB_VELK_FAILURE, after logging "system" with errno, if system(3) itself failed;
// in a program that ignores SIGCHLD it always does, with ECHILD, although the line has run.
//
// Blocking: until the command has ended.
VELK_API int SystemCommand(const char* command);

// Puts an edited copy in place: runs "cat SOURCE > TARGET" and then "rm SOURCE". Copying with cat
// instead of renaming keeps the target's inode, owner and mode. The paths go to the shell
// unchanged. Returns the result of the removal as SystemCommand() gives it; a failed copy is not
// detected. A source that does not exist leaves the target empty.
//
// Paths too long for the 256-byte command line give LIB_VELK_INVALID_PARAMETER with a log line, and
// nothing is run.
//
// Blocking: until both commands have ended.
VELK_API int FileCopyAndDelete(const std::string& source, const std::string& target);

// The functions of the other headers that say they edit a file do it through an edit copy: a file
// in /var/tmp with the same name. An existing one is removed, a new one is written line by line,
// and the two lines of FileCopyAndDelete() put it in place. The edit copy has mode 0600 with any
// umask, 0644 in a program with different real and effective users, because the shell reads it as
// the real one. Every line of an edited file ends in a newline, even if the last line did not.
//
// After the first line the file is checked. If it was cut, so that it is empty or a shorter piece
// of the new text, it is written from the edit copy, in place, and flushed to the disk. That
// happens if cat(1) is killed or cannot be started. It is logged as "FileEdit mended" with the
// path. If it fails, "FileEdit mend" is logged with errno, LIB_VELK_FAILURE is returned, and the
// edit copy stays: it has the only complete text. An unchanged file stays as it is, and
// LIB_VELK_SUCCESS is returned. Through execute_velk_command() both lines inherit the set/restart
// lock: if the caller is killed, no other set runs before the tool has ended. Nothing else that the
// library starts inherits it; in a program with threads, a program that another thread starts at
// that moment does.
//
// A failure before the edit copy is put in place leaves the file unchanged; if the edit copy was
// open, it remains, normally empty. If it cannot be written in full, "FileEdit
// write" is logged with errno, the edit copy is removed and LIB_VELK_FAILURE is returned. A read
// that fails after the file's first block counts as the end of the file: the text read until then
// replaces it. Two editors of one file at once would mix their edit copies: direct callers hold the
// lock of VkLibLock().
//
// Some files are empty only while a set replaces their text. A get that finds one of them empty
// reads it again for up to 50 milliseconds: /etc/network/interfaces, /etc/dhclient.conf,
// /etc/dhclient-exit-hooks, /var/cron/tabs/root and /var/libvelk/libvelk.

// Returns whether a text contains only the digits '0' to '9': 1 or 0. A null pointer and the
// empty text give 1. No sign, blank or decimal point is accepted. Never blocks, touches nothing.
VELK_API unsigned isStrNum(const char* text);

// Restarts the interface of the request (command 1): RestartWired() for "eth0", RestartWireless()
// for any other name. `out` is not used by any of the three. Failing ifdown(8) and ifup(8) runs are
// not detected, see SystemCommand().
VELK_API int Restart(const _velk_request& request, char* out);

// Runs "sudo ifdown NAME", sleep(1) and "sudo ifup NAME". If a wireless adapter is attached, it
// then sleeps 5 seconds. If the wired port has a link, it then restarts "eth1" twice with ifdown
// and ifup, each time after a sleep of 30 seconds. Returns the result of the first ifup's command
// line.
//
// A sleep has its full length, even if signal handlers of the program interrupt sleep(3).
//
// Blocking: the commands and 1 second; with an adapter 6 seconds, with adapter and cable 66, and
// the query of the link, see IsWiredLinked().
VELK_API int RestartWired(const _velk_request& request, char* out);

// If the first parameter byte is VELK_RESTART_NOTIFY_ONLY, only notifies the wireless daemon; with
// a wired link it does nothing. Any other byte runs "sudo ifdown NAME" and sleep(1). Then, with a
// wired link, it runs "sudo ifconfig NAME up". Without a link it runs "sudo ifup NAME &" in the
// background and notifies the daemon.
//
// Returns LIB_VELK_NO_ADAPTER, with nothing done, if no supported adapter is attached;
// LIB_VELK_SUCCESS if there was nothing to notify; otherwise the result of the last step: of the
// command line, or of SendWlanRequestMessage().
// Blocking: the commands, 1 second, and the query of the link, see IsWiredLinked().
VELK_API int RestartWireless(const _velk_request& request, char* out);

#endif  // VELK_FRAME_H_
