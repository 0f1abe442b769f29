// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp.h - the options that the DHCP client requests from a DHCP server.
#ifndef VELK_DHCP_H_
#define VELK_DHCP_H_

#include <string>

#include "velk/export.h"

struct _velk_request;

// ---- Commands ----------------------------------------------------------------------------------
//
// Blocking: a get as long as reading one small file, a set as long as rewriting two.

// Reads whether the client requests time servers (command 7, no interface) or name servers (command
// 107) into out[0]: VELK_ON or VELK_OFF. Only the request statement counts, see GetDhcpServer().
//
// Returns the result of the option's function; LIB_VELK_INVALID_PARAMETER for a null `out` and for
// any other id.
VELK_API int GetDhcp(const _velk_request& request, char* out);

// Switches the option of GetDhcp() by request.data[0]: VELK_ON on, any other byte off. `out` is not
// used. Returns the result of the option's function; LIB_VELK_INVALID_PARAMETER for any other id.
VELK_API int SetDhcp(const _velk_request& request, char* out);

// Write into out[0] the result of GetDhcpServer() with "ntp-servers" or "domain-name-servers" for
// the request's interface. Return LIB_VELK_SUCCESS; LIB_VELK_FAILURE, with nothing written, for a
// null `out` and if /etc/dhclient.conf cannot be read.
VELK_API int GetDhcpNtps(const _velk_request& request, char* out);
VELK_API int GetDhcpDns(const _velk_request& request, char* out);

// Adds "ntp-servers" to the requested options or removes it, with SetDhcpServer(). Then switches
// the clock setter in the exit hooks by the same byte, with SetNtpdate(), which switches nothing
// for a byte other than VELK_ON and VELK_OFF. If the first step fails, the second file stays
// unchanged. If the second fails, the first is not undone. `out` is not used.
//
// Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE if a file cannot be opened.
// Side effects: edits /etc/dhclient.conf and /etc/dhclient-exit-hooks.
VELK_API int SetDhcpNtps(const _velk_request& request, char* out);

// Like SetDhcpNtps() for "domain-name-servers" and the resolver update in the client's script, with
// SetDnsDhcpScript(). Side effects: edits /etc/dhclient.conf and /sbin/dhclient-script.
VELK_API int SetDhcpDns(const _velk_request& request, char* out);

// ---- The client's configuration ----------------------------------------------------------------

// The DHCP client's configuration is /etc/dhclient.conf, see dhclient.conf(5), one statement or
// brace a line. An interface's block begins at a line with the word "interface" and its name and
// ends at a line with "}"; lines outside blocks are for every interface. `nic` is the interface's
// name; the empty name means every block, and for the file's lines up to the first "}".
//
// A "request" statement names the options that the client asks for, separated by commas, and ends
// at a line with ";". Words are separated as in IsSearchString(); with `comment_aware` a word
// after a "#" does not count.
//
// Editing is done as velk/frame.h describes, and takes effect with the next lease. Blocking: as
// long as reading or rewriting one small file.

// Returns whether `line`, which must end in a newline, may apply to the interface: false for the
// line that opens another interface's block. Two flags are kept from line to line. `in_block` is
// true if the line is in the interface's block; before the first line it is true if `nic` is empty.
// `other_block` is true if another interface's block has begun and has not ended on the same line;
// before the first line it is false. The caller clears `other_block` at the line with the word "}"
// and does not pass the lines up to it. Throws as IsSearchString() does.
VELK_API bool IsNicName(const std::string& line, const std::string& nic, bool& in_block,
                        bool& other_block, bool comment_aware);

// Sets `requested` to whether the first request statement that applies to the interface contains
// `option`, as any part of its text. A line outside the interface's block that contains a "#"
// anywhere is ignored. Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE if the file cannot be read;
// `requested` is then unchanged.
VELK_API int GetDhcpServer(const std::string& nic, const std::string& option, bool& requested,
                           bool comment_aware);

// Adds `option` as the last one to every request statement that applies to the interface, or
// removes it. A statement ends for this function only at a line that contains ";" and not the
// option. After a statement that already names it, the next such line gains the option too. After a
// statement that it is removed from, it is removed up to and including such a line.
//
// Returns LIB_VELK_SUCCESS, also without any request statement; LIB_VELK_FAILURE if a file cannot
// be opened. Side effects: edits /etc/dhclient.conf.
VELK_API int SetDhcpServer(const std::string& nic, const std::string& option, bool add,
                           bool comment_aware);

// Switches the interface's blocks on, deleting the first "#" of each of their lines at any
// position, or off, putting a "#" into column one of each line that contains none. A line outside
// blocks that contains "}" is switched too. Results and side effects as SetDhcpServer().
VELK_API int SetDhcpRequest(const std::string& nic, bool enable);

// ---- The client's script -----------------------------------------------------------------------

// Switches the lines of /sbin/dhclient-script, see dhclient-script(8), that call its function
// "make_resolv_conf", which installs the name servers of a lease, and run for the interface: by a
// "#" in column one, and by deleting the first "#" of a line that has one in front of the call.
// Lines between "if" with "interface" and "fi" count as the exit hooks' do, see velk/ipconf.h.
//
// Returns LIB_VELK_SUCCESS, also without any call; LIB_VELK_FAILURE if a file cannot be
// opened. Side effects: edits /sbin/dhclient-script. Blocking: as long as rewriting one small file.
VELK_API int SetDnsDhcpScript(const std::string& nic, bool enable);

#endif  // VELK_DHCP_H_
