// interfaces_file.h - the stanzas of /etc/network/interfaces, as its reader and writer know them.
#ifndef VELK_IPCONF_INTERFACES_FILE_H_
#define VELK_IPCONF_INTERFACES_FILE_H_

#include <string>
#include <string_view>

namespace velk {

constexpr char kInterfacesFile[] = "/etc/network/interfaces";

// A line that begins so ends the stanza before it.
constexpr std::string_view kStanzaStart = "iface";

// What the first line of an interface's stanza begins with; the method follows.
inline std::string StanzaHeader(std::string_view interface) {
    return std::string(kStanzaStart).append(" ").append(interface).append(" inet ");
}

constexpr std::string_view kStaticMethod = "static";
constexpr std::string_view kDhcpMethod = "dhcp";

// What the value lines hold in front of their values.
constexpr char kAddressKey[] = "address ";
constexpr char kNetmaskKey[] = "netmask ";
constexpr char kGatewayKey[] = "gateway ";

}  // namespace velk

#endif  // VELK_IPCONF_INTERFACES_FILE_H_
