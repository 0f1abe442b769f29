// dhcp.h - what the DHCP client requests from a DHCP server.
#ifndef VELK_DHCP_H_
#define VELK_DHCP_H_

#include <string>

#include "velk/export.h"

// The DHCP client's configuration is /etc/dhclient.conf, see dhclient.conf(5), one statement or
// brace a line. An interface's block begins at a line with the word "interface" and its name and
// ends at a line with "}"; lines outside blocks are for every interface. `nic` is the interface's
// name; the empty name stands for every block, and for the file's lines up to the first "}".
//
// A "request" statement names the options that the client asks for, separated by commas, and ends
// at a line with ";". Words are told apart as IsSearchString() does; with `comment_aware` a word
// behind a "#" does not count.
//
// Editing is done as velk/ipconf.h says. Blocking: as long as reading or rewriting one small file.

// Tells whether `line`, which must end in a newline, may concern the interface: false for the line
// that opens another interface's block. It keeps two flags from line to line: `in_block`, that the
// line lies in the interface's block (to begin with: `nic` is empty), and `other_block`, that
// another interface's block has begun and not ended on the same line (to begin with: false). The
// caller clears `other_block` at the line with the word "}" and does not offer the lines up to
// there.
VELK_API bool IsNicName(const std::string& line, const std::string& nic, bool& in_block,
                        bool& other_block, bool comment_aware);

// Sets `requested` to whether the first request statement that concerns the interface holds
// `option`, as any part of its text. A line outside the interface's block that holds a "#" anywhere
// is passed over. Returns LIB_VELK_SUCCESS, or LIB_VELK_FAILURE, `requested` untouched, when the
// file cannot be read.
VELK_API int GetDhcpServer(const std::string& nic, const std::string& option, bool& requested,
                           bool comment_aware);

// Adds `option` as the last one to every request statement that concerns the interface, or removes
// it. A statement ends for this function only at a line that holds ";" and not the option: behind
// one that names it already, the next such line gains the option too.
//
// Returns LIB_VELK_SUCCESS, also without any request statement; LIB_VELK_FAILURE when a file cannot
// be opened, which leaves the edit copy behind, empty. Side effects: edits /etc/dhclient.conf.
VELK_API int SetDhcpServer(const std::string& nic, const std::string& option, bool add,
                           bool comment_aware);

// Switches the interface's blocks on, deleting the first "#" of each of their lines wherever it
// stands, or off, putting a "#" into column one of each line that holds none. A line outside blocks
// that holds "}" is switched too. Results and side effects as SetDhcpServer().
VELK_API int SetDhcpRequest(const std::string& nic, bool enable);

#endif  // VELK_DHCP_H_
