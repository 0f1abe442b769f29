// ipconf.h - the device's IP configuration: DNS servers.
#ifndef VELK_IPCONF_H_
#define VELK_IPCONF_H_

#include "velk/export.h"

struct _velk_request;

// DNS servers (command 108). They are the "nameserver" lines of /etc/resolv.dnsmasq.conf, which
// the DNS forwarder dnsmasq(8) reads as its upstream servers in the form of resolv.conf(5). The
// file is shared: eth0 and eth1 answer alike.
//
// The data area holds three slots of 16 bytes, 48 bytes in all, each one server address as text,
// such as "192.168.0.1". A text shorter than 16 bytes ends with a NUL; a slot whose 16th byte is
// not NUL is a text of exactly 16 bytes. An empty slot (first byte NUL) ends the list.

// Reads the first three servers into the slots of `out` (at least 48 bytes). A line counts when it
// begins with "nameserver"; its second word is the address. A counted line without an address
// takes a slot and leaves it empty. An address longer than 16 bytes runs on into the next slot and
// is cut at the end of the 48 bytes.
//
// Returns LIB_VELK_SUCCESS (also when no server is set), LIB_VELK_INVALID_PARAMETER for a null
// `out`, LIB_VELK_FAILURE when the file cannot be read; `out` is then untouched. Logs nothing.
// Blocking: as long as reading one small file.
VELK_API int GetDns(const _velk_request& request, char* out);

// Replaces all servers by those in the slots of the request's data, up to the first empty slot.
// `out` is not used. The texts are written as they stand, one "nameserver ADDRESS" line each.
//
// Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE when the file cannot be opened or written.
// Side effects: /etc/resolv.dnsmasq.conf is rewritten in place (created when missing); everything
// it held before is gone. A failed write leaves it cut short. Logs nothing.
// Blocking: as long as writing one small file.
VELK_API int SetDns(const _velk_request& request, char* out);

#endif  // VELK_IPCONF_H_
