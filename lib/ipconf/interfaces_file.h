// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interfaces_file.h - the stanzas of /etc/network/interfaces, as its reader and writer know them.
#ifndef VELK_IPCONF_INTERFACES_FILE_H_
#define VELK_IPCONF_INTERFACES_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace velk {

// A line with this start ends the stanza before it.
constexpr char kStanzaStart[] = "iface";
constexpr char kFamily[] = " inet ";  // after the interface's name

// Returns the length of "iface NAME inet " at the start of a line, the position of the method; 0 if
// the line is no header of the interface. It copies no text, unlike StanzaHeader().
inline size_t HeaderLength(std::string_view line, std::string_view interface) {
    constexpr size_t kStart = sizeof(kStanzaStart) - 1;
    constexpr size_t kName = kStart + 1;  // the name begins after a blank
    const bool is_header = line.starts_with(kStanzaStart) && line.substr(kStart).starts_with(' ') &&
                           line.substr(kName).starts_with(interface) &&
                           line.substr(kName + interface.size()).starts_with(kFamily);
    return is_header ? kName + interface.size() + sizeof(kFamily) - 1 : 0;
}

// Returns the start of such a line as a new text.
inline std::string StanzaHeader(std::string_view interface) {
    return std::string(kStanzaStart).append(" ").append(interface).append(kFamily);
}

constexpr char kStaticMethod[] = "static";
constexpr char kDhcpMethod[] = "dhcp";

// The keys before the values in the value lines.
constexpr char kAddressKey[] = "address ";
constexpr char kNetmaskKey[] = "netmask ";
constexpr char kGatewayKey[] = "gateway ";

}  // namespace velk

#endif  // VELK_IPCONF_INTERFACES_FILE_H_
