// device_files.cpp - the files that the library works with, and how it changes them.
#include "velkctl/files/device_files.h"

#include <array>

#include "lib/base/paths.h"
#include "velk.h"

namespace velkctl {
namespace {

constexpr std::array<uint32_t, 4> kInStanzas{VELK_CMD_IP_METHOD, VELK_CMD_IP_ADDRESS,
                                             VELK_CMD_NETMASK, VELK_CMD_GATEWAY};
constexpr std::array<uint32_t, 2> kInExitHooks{VELK_CMD_APIPA, VELK_CMD_DHCP_NOTICE};
constexpr std::array<uint32_t, 3> kChangeExitHooks{VELK_CMD_APIPA, VELK_CMD_DHCP_NOTICE,
                                                   VELK_CMD_DHCP_NTP};
constexpr std::array<uint32_t, 2> kInDhcpConfig{VELK_CMD_DHCP_DNS, VELK_CMD_DHCP_NTP};
constexpr std::array<uint32_t, 3> kChangeDhcpConfig{VELK_CMD_IP_METHOD, VELK_CMD_DHCP_DNS,
                                                    VELK_CMD_DHCP_NTP};
constexpr std::array<uint32_t, 1> kChangeClientScript{VELK_CMD_DHCP_DNS};
constexpr std::array<uint32_t, 1> kInResolverFile{VELK_CMD_DNS};
constexpr std::array<uint32_t, 3> kInCrontab{VELK_CMD_NTP, VELK_CMD_NTP_SERVER,
                                             VELK_CMD_WEB_UPDATE};
constexpr std::array<uint32_t, 2> kInIdentityFile{VELK_CMD_ADMINISTRATOR, VELK_CMD_LOCATION};

constexpr std::array<DeviceFile, 10> kFiles{{
    {velk::kInterfacesFile, Change::kByEdit, "method, address, netmask and gateway", kInStanzas,
     kInStanzas},
    {velk::kExitHooks, Change::kByEdit, "apipa, dhcp-notice and dhcp-ntp", kInExitHooks,
     kChangeExitHooks},
    {velk::kDhcpConfigFile, Change::kByEdit, "method, dhcp-dns and dhcp-ntp", kInDhcpConfig,
     kChangeDhcpConfig},
    {velk::kClientScript, Change::kByEdit, "dhcp-dns", {}, kChangeClientScript},
    {velk::kResolverFile, Change::kWhole, "dns", kInResolverFile, kInResolverFile},
    {velk::kCrontab, Change::kByEdit, "ntp, ntp-server and web-update", kInCrontab, kInCrontab},
    {velk::kIdentityFile, Change::kByEdit, "administrator and location", kInIdentityFile,
     kInIdentityFile},
    {velk::kSnmpFile, Change::kBySudo, "administrator and location", {}, kInIdentityFile},
    {velk::kSupportList, Change::kNever, "wireless adapters", {}, {}},
    {velk::kUsbDevices, Change::kNever, "wireless adapters", {}, {}},
}};

}  // namespace

std::span<const DeviceFile> DeviceFiles() {
    return kFiles;
}

}  // namespace velkctl
