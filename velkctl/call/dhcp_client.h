// dhcp_client.h - whether a DHCP client runs for an interface.
#ifndef VELKCTL_CALL_DHCP_CLIENT_H_
#define VELKCTL_CALL_DHCP_CLIENT_H_

#include <string>
#include <string_view>

namespace velkctl {

// True if a process of the DHCP client has the interface among its arguments.
bool IsDhcpClientRunning(const std::string& interface);

// True if this command line, with a NUL after each word, is the client's for the interface.
bool IsDhcpClientFor(std::string_view command_line, std::string_view interface);

}  // namespace velkctl

#endif  // VELKCTL_CALL_DHCP_CLIENT_H_
