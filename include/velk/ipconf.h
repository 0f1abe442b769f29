// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ipconf.h - the device's IP configuration: methods and addresses of the interfaces, the DHCP
// client's actions after its lease events, DNS servers.
#ifndef VELK_IPCONF_H_
#define VELK_IPCONF_H_

#include <cstdint>
#include <string>

#include "velk/export.h"

struct _velk_request;

// ---- Commands ----------------------------------------------------------------------------------

// Reads the setting of request.command_id for request.interface into the data area `out` (512
// bytes): method (102), APIPA (103), address (104), mask (105) or gateway (106). The functions
// below describe the formats.
//
// Returns the result of the setting's function; LIB_VELK_INVALID_PARAMETER for a null `out` and for
// any other id. Blocking: as the setting's function.
VELK_API int GetInterfaces(const _velk_request& request, char* out);

// Changes the setting of request.command_id for request.interface to the value in request.data:
// those of GetInterfaces() and the DHCP notices (109). One call makes one change: a new method
// leaves the addresses and the hooks alone, a new address leaves the method alone. `out` is not
// used.
//
// Returns the result of the setting's function; LIB_VELK_INVALID_PARAMETER for any other id.
// Blocking: as the setting's function.
VELK_API int SetInterfaces(const _velk_request& request, char* out);

// ---- Method and addresses ----------------------------------------------------------------------
//
// They are in the interface's stanza in /etc/network/interfaces, see interfaces(5). A stanza
// begins at a line that begins with "iface NAME inet " and ends before the next line that begins
// with "iface". All lines between them, comments and "auto" lines included, belong to it. A value
// follows its key ("address ", "netmask ", "gateway ") at any position of its line. The readers use
// only an interface's first stanza.

// Edits take effect when the interface is restarted. Files are edited as velk/frame.h describes.

// Returns how the interface is configured: VELK_METHOD_STATIC, VELK_METHOD_DHCP, or
// LIB_VELK_FAILURE if the file cannot be read, contains no stanza of the interface, or names
// another method. Only the beginning of the method's word is compared. Blocking: as long as reading
// one small file.
VELK_API int GetIpSetting(const std::string& interface);

// Writes GetIpSetting() of the request's interface into out[0] and returns LIB_VELK_SUCCESS.
// Returns LIB_VELK_FAILURE, with nothing written, for a null `out` and if the method is not known.
VELK_API int GetIpSettingMethod(const _velk_request& request, char* out);

// Copies the text after `key` on the first line of the interface's stanza that contains it into the
// data area `out` (512 bytes), as a NUL-terminated text of at most 511 bytes. Without such a line
// nothing is written.
//
// Returns LIB_VELK_SUCCESS, also without a value; LIB_VELK_FAILURE for a null `key` or `out` and
// if the file cannot be read. Blocking: as long as reading one small file.
VELK_API int GetAddressConf(const _velk_request& request, const char* key, char* out);

// Read the address, mask and gateway of the request's interface as dotted-quad text (16 bytes with
// the NUL; a static value is copied as it is in the file, up to 511 bytes and the NUL) into the
// data area `out`. For a static interface they are the configured values, even if the kernel has
// another value. For a DHCP interface they are the live values: address and mask from ifconfig(8),
// see GetIpAddress(), the gateway from the routing table, see GetIoctl(), for which the request
// must contain VELK_CMD_GATEWAY. A missing value is an empty text.
//
// Return LIB_VELK_SUCCESS; LIB_VELK_FAILURE if GetIpSetting() does not find the method and, for a
// static interface, for a null `out`; for a DHCP interface the result of the function of the live
// value. For "eth1" on DHCP the values are empty while IsWiredLinked() finds a link.
// Blocking: as long as reading one small file; for a DHCP interface as the function of the live
// value, and for "eth1" IsWiredLinked() before it.
VELK_API int GetIpAddressConf(const _velk_request& request, char* out);
VELK_API int GetSubNetMaskConf(const _velk_request& request, char* out);
VELK_API int GetDefGatewayConf(const _velk_request& request, char* out);

// Changes the method of the request's interface to request.data[0], VELK_METHOD_STATIC or
// VELK_METHOD_DHCP, in all its stanzas; text after the method on their first lines is removed,
// their other lines stay. Then SetDhcpRequest() switches the interface's block in the DHCP client's
// configuration on for DHCP and off for a static address. Takes effect when the interface is
// restarted. `out` is not used.
//
// A restart does not end a DHCP client that runs: ifdown(8) reads the new method already. To end
// it, run "ifdown" before a set from DHCP to static.
//
// Returns LIB_VELK_SUCCESS, LIB_VELK_INVALID_PARAMETER for any other byte, LIB_VELK_FAILURE if
// a file cannot be opened. The method stays changed if only the DHCP client's configuration cannot
// be edited.
// Side effects: edits /etc/network/interfaces and /etc/dhclient.conf. For "eth0" and
// VELK_METHOD_DHCP "rm -f /tmp/oldIPAddress" is run last, even after a failure.
// Blocking: as long as rewriting two small files and five shell lines take.
VELK_API int SetIpSettingMethod(const _velk_request& request, char* out);

// Writes a line of a tab, `key` and the text of request.data in place of the first line that
// contains `key` in the interface's stanza or, if none does, before the next line that begins with
// "iface". If the stanza is the last of the file and contains no such line, nothing is added, and
// the result is LIB_VELK_SUCCESS. A later stanza of the interface is edited too, except one that
// directly follows a stanza of the interface without the key. An empty text with the key "gateway "
// removes the line; with another key it writes a line without a value. The text is not checked: it
// is written unchanged.
//
// Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE for a null `key` and if a file cannot be opened.
// Side effects: edits /etc/network/interfaces. Blocking: as long as rewriting one small file.
VELK_API int SetAddressConf(const _velk_request& request, const char* key);

// Call SetAddressConf() with "address ", "netmask " and "gateway ". `out` is not used.
VELK_API int SetIpAddressConf(const _velk_request& request, char* out);
VELK_API int SetSubNetMaskConf(const _velk_request& request, char* out);
VELK_API int SetDefGatewayConf(const _velk_request& request, char* out);

// ---- Exit hooks of the DHCP client -------------------------------------------------------------
//
// Source: lib/dhcp/exit_hooks.cpp.
//
// /etc/dhclient-exit-hooks is a shell script that the DHCP client's script runs after its lease
// events, see dhclient-script(8). A feature is a command line that must already be there: it is
// switched off by a "#" in column one and on by deleting the line's first "#". Lines between
// "if" with "$interface" and "fi" count only where they run for the interface, see the branches of
// sh(1): the interface's name on the "if" line, with any comparison, means its "then" branch.
// Blocks do not nest. The switch byte is VELK_ON or VELK_OFF.

// Switches every line that contains `command` and runs for the request's interface, without an
// interface every such line, to request.data[0]. Any other byte switches nothing, but the file is
// rewritten.
//
// Returns LIB_VELK_SUCCESS, also if no line contains the command; LIB_VELK_FAILURE for a null
// `command` and if a file cannot be opened.
// Side effects: edits /etc/dhclient-exit-hooks. Blocking: as long as rewriting one small file.
VELK_API int SetDhclient(const _velk_request& request, const char* command);

// Calls SetDhclient() for the daemon that gives an interface a link-local address if no DHCP server
// answers, "/usr/sbin/avahi-autoipd". `out` is not used.
VELK_API int SetApipa(const _velk_request& request, char* out);

// Calls SetDhclient() for the program that sets the clock from a time server, "/usr/bin/ntpdate".
VELK_API int SetNtpdate(const _velk_request& request);

// Calls SetDhclient() for the programs that print a notice after DHCP has finished,
// "/sbin/printdhcpnotice.pl", and before it starts, "/sbin/printdhcpstart.pl". The second is not
// switched if the first fails. `out` is not used. Only for "eth0": for any other interface nothing
// is done, and the result is that of strcmp(3) on its name and "eth0".
VELK_API int SetPrintDHCPFinished(const _velk_request& request, char* out);

// Writes into out[0] whether the link-local daemon is switched on for the request's interface:
// VELK_ON if a line that runs for it contains "/usr/sbin/avahi-autoipd" as a word outside a
// comment, else VELK_OFF. Returns LIB_VELK_SUCCESS; LIB_VELK_FAILURE, with nothing written, for a
// null `out` and if the script cannot be read. Blocking: as long as reading one small file.
VELK_API int GetApipa(const _velk_request& request, char* out);

// ---- Text search -------------------------------------------------------------------------------
//
// Source: lib/base/exported_helpers.cpp.

// Sets `pos` to the first place of `word` in `line`, to 0xffffffff if there is none. Returns true
// if it is a word there: at the start or after a blank, a tab, a comma or a "#", and before a
// blank, a tab, a newline, a semicolon or a comma. Later places are ignored. With `comment_flag` a
// word after a "#" does not count. A null `word` gives false and leaves `pos` unchanged.
//
// The line must end in a newline. Where the word is the end of the text,
// std::out_of_range("basic_string::at") is thrown.
VELK_API bool IsSearchString(const std::string& line, const char* word, uint32_t& pos,
                             bool comment_flag);

// Like IsSearchString(), but ignores the characters around the word, and never in a comment: true
// if no "#" precedes the first place. Throws nothing.
VELK_API bool IsSearchWord(const std::string& line, const char* word, uint32_t& pos);

// ---- DNS servers -------------------------------------------------------------------------------

// DNS servers (command 108). They are the "nameserver" lines of /etc/resolv.dnsmasq.conf, which
// the DNS forwarder dnsmasq(8) reads as its upstream servers in the form of resolv.conf(5). The
// file is shared: eth0 and eth1 give the same answer.
//
// The data area holds three slots of 16 bytes, 48 bytes in all, each one server address as text,
// such as "192.168.0.1". A text shorter than 16 bytes ends with a NUL; a slot without a NUL in its
// 16th byte is a text of exactly 16 bytes. An empty slot (first byte NUL) ends the list.

// Reads the first three servers into the slots of `out` (at least 48 bytes). A line counts if it
// begins with "nameserver"; its second word is the address. A counted line without an address
// takes a slot and leaves it empty. An address longer than 16 bytes runs on into the next slot and
// is cut at the end of the 48 bytes.
//
// Returns LIB_VELK_SUCCESS (also if no server is set), LIB_VELK_INVALID_PARAMETER for a null
// `out`, LIB_VELK_FAILURE if the file cannot be read; `out` is then unchanged. Logs nothing.
// Blocking: as long as reading one small file.
VELK_API int GetDns(const _velk_request& request, char* out);

// Replaces all servers by those in the slots of the request's data, up to the first empty slot.
// `out` is not used. The texts are written unchanged, one "nameserver ADDRESS" line each.
//
// Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE if the file cannot be opened or written.
// Side effects: /etc/resolv.dnsmasq.conf is rewritten in place (created if missing); its former
// text is lost. A failed write leaves it cut short. Logs nothing.
// Blocking: as long as writing one small file.
VELK_API int SetDns(const _velk_request& request, char* out);

#endif  // VELK_IPCONF_H_
