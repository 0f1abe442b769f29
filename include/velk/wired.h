// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wired.h - the state of an interface in the kernel: link, addresses, gateway, speed.
#ifndef VELK_WIRED_H_
#define VELK_WIRED_H_

#include "velk/export.h"

struct _velk_request;
struct ifreq;

// Functions below that run a tool and read its output let it write into /var/tmp/get_result. The
// file is removed with rm(1) after reading; an empty one of a link query remains. The functions
// take turns, in the order of their calls, through an advisory flock(2) on the folder /var/tmp
// itself: each run of a tool may wait for others. A reader continues without its turn if the queue
// has not moved for 3 seconds, or after it has waited for 15.
//
// The file at /var/tmp/get_result is used only if it is a regular file of the caller with one name.
// If there is none, a new one of mode 0600 is made before the tool runs. Anything else at that path
// is removed first. If that is not possible, no tool is run, and the result is the same as for a
// file that cannot be opened. A line of more than 64 KB with its newline ends the reading.

// ---- Link ------------------------------------------------------------------------------------

// Returns whether the wired port eth0 has a link: 1, or 0 if it has none or if its state cannot be
// determined. Never fails.
//
// Runs "sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result" and looks for ethtool(8)'s "Link
// detected:" line. A run without that line is followed by sleep(1) and the next one; after 60 runs
// IsWiredLinkedFromSyslog() decides. A missing or empty result is logged as "IsWiredLinked
// ifstream", the end of the runs as "(ETHTOOL_RETRY - 1) == i)".
//
// If no tool can write a result because /var/tmp is not writable, the kernel's flag IFF_RUNNING of
// eth0 decides after that minute, see netdevice(7).
//
// Blocking: one run of ethtool as a rule; if it has no answer, a minute of sleep and 62 runs of
// tools, each with its turn to wait for. If another program never ends its turn, only the first run
// of ethtool waits for it.
VELK_API int IsWiredLinked();

// Returns the link state of the kernel's last link message for eth0 in
// /var/log/syslog/syslog_info.log.0 or, if that has none, .1: lines with "eth0: link" that also
// contain "link up" or "link down", found with grep(1). Returns 0 if neither file has one. A file
// in which grep finds no "eth0: link" is logged as "Error ifs.".
//
// Blocking: two runs of grep at most, each with its turn to wait for.
VELK_API int IsWiredLinkedFromSyslog();

// ---- Commands on the ioctl table ---------------------------------------------------------------

// Reads the property of request.command_id for request.interface into the data area `out` (512
// bytes): the MAC address (101), the link speed (201), and for direct callers also the live address
// (104), mask (105) and default gateway (106). The functions below describe the formats. An
// interface name is cut to 15 bytes.
//
// Returns LIB_VELK_INVALID_PARAMETER for a null `out`. For "eth1" alone, with any id, returns
// LIB_VELK_NO_ADAPTER if IsWlanAttached() finds no adapter, then LIB_VELK_WIRED_LINKED if
// IsWiredLinked() finds a link. Then returns 0 with nothing written for any other id,
// LIB_VELK_FAILURE, logged as "socket", if no socket can be opened, and the result of the
// property's function.
//
// Blocking: as the property's function; for "eth1" IsWiredLinked() comes before it.
VELK_API int GetIoctl(const _velk_request& request, char* out);

// Changes the property of request.command_id for request.interface to the value in request.data:
// one byte for the link speed (201), and for direct callers a dotted-quad text, ended by its NUL or
// by the end of the data, for the live address (104), mask (105) and default gateway (106). `out`
// is not used. An interface name is cut to 15 bytes.
//
// Returns the result of the property's function, 0 for any other id, LIB_VELK_FAILURE, logged as
// "socket", if no socket can be opened. Blocking: as the property's function.
VELK_API int SetIoctl(const _velk_request& request, char* out);

// ---- The properties ----------------------------------------------------------------------------
//
// Common to all of them: `socket` is any IPv4 socket, `ifr` contains the interface's name and is
// scratch space otherwise, `request` is the code for ioctl(2), see netdevice(7). Each returns
// LIB_VELK_SUCCESS on success, and LIB_VELK_INVALID_PARAMETER for a null `out` or `value`. Values
// are NUL-terminated and go into the command line unchanged; one that makes it longer than 255
// bytes gives LIB_VELK_INVALID_PARAMETER with a log line, and nothing is run. Commands are run by
// SystemCommand(): LIB_VELK_FAILURE if the shell cannot be run, while a failing tool is not
// detected. Blocking: a system call, or the tools that are named.

// Writes the hardware address, 12 upper-case hexadecimal digits and a NUL (13 bytes), as
// SIOCGIFHWADDR gives it. An interface without one leaves `out` unchanged and gives 0, logged as
// "ioctl".
VELK_API int GetMacAddress(int socket, ifreq& ifr, int request, char* out);

// Writes one IPv4 address as dotted-quad text (16 bytes at most), as SIOCGIFADDR or SIOCGIFNETMASK
// gives it. An interface without one gives 0 and an empty text, logged as "ioctl".
VELK_API int GetNetAddress(int socket, ifreq& ifr, int request, char* out);
VELK_API int GetIpAddress(int socket, ifreq& ifr, int request, char* out);
VELK_API int GetSubNetMask(int socket, ifreq& ifr, int request, char* out);

// Changes one IPv4 address through the given ioctl, such as SIOCSIFADDR. `value` is an address in
// any form that inet_aton(3) takes; for anything else the address in `ifr` is used.
// Returns LIB_VELK_FAILURE, logged as "ioctl", if the kernel refuses. No command of the library
// uses it.
VELK_API int SetNetAddress(int socket, ifreq& ifr, int request, const char* value);

// Changes the address: runs "sudo ifconfig INTERFACE VALUE", see ifconfig(8).
VELK_API int SetIpAddress(int socket, ifreq& ifr, int request, const char* value);

// Changes the mask: runs "sudo ifconfig INTERFACE netmask VALUE", see ifconfig(8).
VELK_API int SetSubNetMask(int socket, ifreq& ifr, int request, const char* value);

// Writes the gateway of the interface's first default route in /proc/net/route, see proc(5), as
// dotted-quad text (16 bytes at most). A route counts if its interface begins with the name, so
// that of an alias does too. Without a default route `out` is unchanged, and the result is 0.
// Returns LIB_VELK_FAILURE, logged as "DelRoutingTable ifs", if the table cannot be read.
VELK_API int GetDefGateway(int socket, ifreq& ifr, int request, char* out);

// Replaces the default gateway: runs "sudo route del default gw OLD" with the result of
// GetDefGateway() (nothing after "gw" if there is none), then "sudo route add default gw VALUE",
// see route(8). A routing table that cannot be read is logged as "DelRoutingTable ifs" and skips
// the deletion. If the shell for the deletion cannot be run, nothing is added; a value that makes
// the second line too long is refused before the first is run. Returns the result of the last
// command line.
VELK_API int SetDefGateway(int socket, ifreq& ifr, int request, const char* value);

// Writes one byte, enum velk_link_mode, from the output of "sudo ethtool INTERFACE >
// /var/tmp/get_result". Returns LIB_VELK_FAILURE if the shell cannot be run, if there is no output
// file (logged as "ifstream"), and if ethtool(8) shows neither negotiation nor a speed of 10 or 100
// Mbit/s, as for a port forced to 1000 or if ethtool itself failed (logged as "ecmd.autoneg=%d,
// ecmd.speed=%d"); `out` is then unchanged.
VELK_API int GetLinkSpeed(int socket, ifreq& ifr, int request, char* out);

// Forces the mode in the first byte of `value`, enum velk_link_mode, with "sudo ethtool -s
// INTERFACE OPTIONS". Any other byte gives LIB_VELK_INVALID_PARAMETER.
VELK_API int SetLinkSpeed(int socket, ifreq& ifr, int request, const char* value);

// ---- Read-back from ifconfig ------------------------------------------------------------------

// Writes the value after `key` in the block of request.interface in the output of "ifconfig >
// /var/tmp/get_result" into the data area `out` (512 bytes): the rest of the line up to its first
// blank, cut to 511 bytes and NUL. The output form is that of net-tools before 2.0 and of busybox,
// "inet addr:192.168.0.10  Bcast:192.168.0.255  Mask:255.255.255.0". The last match counts, and the
// block of an alias such as eth0:1 belongs to eth0. Without a match `out` is unchanged, and the
// result is 0.
//
// Returns LIB_VELK_INVALID_PARAMETER for a null `key` or `out`; LIB_VELK_FAILURE if the shell
// cannot be run or there is no output file (logged as "ifstream"). Blocking: one run of
// ifconfig(8), with its turn to wait for.
VELK_API int GetNetAddress(const _velk_request& request, const char* key, char* out);

// Writes the live IPv4 address as dotted-quad text: GetNetAddress() with the key "inet addr:", and
// its results.
VELK_API int GetIpAddress(const _velk_request& request, char* out);

// Writes the live mask as dotted-quad text: GetNetAddress() with the key "Mask:", and its results.
VELK_API int GetSubNetMask(const _velk_request& request, char* out);

#endif  // VELK_WIRED_H_
