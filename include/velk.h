// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/*
 * velk.h - read and change every network setting of the device through one function.
 *
 * A caller fills a _velk_request, calls execute_velk_command() and reads the answer from a
 * second record of the same layout: velk/request.h has the record, the numbers of the commands and
 * the results. Plain C (C99 and later) and C++ (C++20) can include this header. C++ callers also
 * get the functions of the single commands, one header per subject, so that a program can call a
 * single step directly.
 *
 * libvelk.so has all functions. libvelk-c.so, an option of the build, has execute_velk_command()
 * alone, with the same behaviour, for programs in C: it needs no library but libc and loads ten
 * times as fast. A program links one of them.
 *
 * The library keeps no state between calls, starts no threads and stores no settings of
 * its own: they are in the system's files, the kernel and the wireless daemon. It reads no
 * environment variables but those of the locale, see SetSettingFile().
 */
#ifndef VELK_H_
#define VELK_H_

#include "velk/export.h"
#include "velk/request.h"
#include "velk/version.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Runs one command.
 *
 * request   the command; only read. Must not overlap the response.
 * response  cleared, then filled: interface, command_type and command_id of the request (the name
 *           cut to 15 bytes and NUL), and in data the bytes of a get. The header is
 *           filled in for every outcome but a null pointer; data stays zero unless written to.
 *
 * Returns the command's own result (see the function of the command), or
 *   LIB_VELK_INVALID_PARAMETER  a null pointer, an unknown type, an id without a command of that
 *                               type, or an interface that the command does not take;
 *   LIB_VELK_LOCKED             set and restart: another process holds the lock;
 *   LIB_VELK_FAILURE            set and restart: the lock file could not be opened or locked;
 *                               any type: the command ran out of memory or threw another
 *                               exception. No exception leaves this function. But if a program
 *                               has loaded libvelk.so with dlopen(3), libc ends the program when
 *                               memory is out at the first exception of a thread. With
 *                               libvelk-c.so it does not.
 *
 * Side effects: a set or restart holds an flock(2) on /var/tmp/vklib_lock for the length of the
 * call (see VkLibLock()) and makes the changes of its command. The log lines
 * of the commands go to syslog(3) at LOG_NOTICE, as do those for a null pointer ("paramater"), an
 * unknown type ("command_type = %d"), an interface that is not allowed ("paramater matching"), a
 * lock that could not be taken ("lockking") and an exception ("execute_velk_command exception" with
 * its text).
 *
 * Blocking: taking the lock never waits. Otherwise as long as the command says.
 *
 * May be called from several processes and threads at once: sets and restarts exclude each other,
 * the later one failing at once with LIB_VELK_LOCKED; gets take no such lock, and those that read a
 * tool's output wait for each other, see velk/wired.h. A thread that is cancelled meanwhile,
 * pthread_cancel(3), finishes the call first.
 *
 * A program with a limit on the size of files, RLIMIT_FSIZE, should ignore SIGXFSZ: an edit beyond
 * the limit then fails with LIB_VELK_FAILURE instead of ending the program.
 */
VELK_API int execute_velk_command(const _velk_request* request, _velk_request* response);

#ifdef __cplusplus
} /* extern "C" */

#include "velk/dhcp.h"
#include "velk/frame.h"
#include "velk/identity.h"
#include "velk/ipconf.h"
#include "velk/ntp.h"
#include "velk/webup.h"
#include "velk/wired.h"
#include "velk/wlan.h"
#endif

#endif /* VELK_H_ */
