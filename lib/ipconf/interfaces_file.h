// interfaces_file.h - the stanzas of /etc/network/interfaces, as its reader and writer know them.
#ifndef VELK_IPCONF_INTERFACES_FILE_H_
#define VELK_IPCONF_INTERFACES_FILE_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace velk {

// A line that begins so ends the stanza before it.
constexpr std::string_view kStanzaStart = "iface";
constexpr std::string_view kFamily = " inet ";  // behind the interface's name

// The length of "iface NAME inet " at the front of a line, where the method stands; 0 for a line
// that is no header of the interface. Compared where it stands: a get has no need of the text.
inline size_t HeaderLength(std::string_view line, std::string_view interface) {
    constexpr size_t kName = kStanzaStart.size() + 1;  // where it begins, behind a blank
    const bool is_header = line.starts_with(kStanzaStart) &&
                           line.substr(kStanzaStart.size()).starts_with(' ') &&
                           line.substr(kName).starts_with(interface) &&
                           line.substr(kName + interface.size()).starts_with(kFamily);
    return is_header ? kName + interface.size() + kFamily.size() : 0;
}

// The front of such a line as a text of its own.
inline std::string StanzaHeader(std::string_view interface) {
    return std::string(kStanzaStart).append(" ").append(interface).append(kFamily);
}

constexpr std::string_view kStaticMethod = "static";
constexpr std::string_view kDhcpMethod = "dhcp";

// What the value lines hold in front of their values.
constexpr char kAddressKey[] = "address ";
constexpr char kNetmaskKey[] = "netmask ";
constexpr char kGatewayKey[] = "gateway ";

}  // namespace velk

#endif  // VELK_IPCONF_INTERFACES_FILE_H_
