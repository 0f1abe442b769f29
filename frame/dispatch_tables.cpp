// dispatch_tables.cpp - which function runs a command, and for which interfaces.
#include "frame/dispatch_tables.h"

#include <array>

namespace velk {
namespace {

constexpr uint8_t kYes = 1;
constexpr uint8_t kNo = 0;

constexpr std::array<CommandEntry, 3> kGetRows{{
    // id, no interface, eth0, eth1, spare, handler
    {VELK_CMD_MAC_ADDRESS, kNo, kYes, kYes, 0, GetIoctl},
    {VELK_CMD_LINK_SPEED, kNo, kYes, kNo, 0, GetIoctl},
    {VELK_CMD_DNS, kNo, kYes, kYes, 0, GetDns},
}};

constexpr std::array<CommandEntry, 2> kSetRows{{
    {VELK_CMD_LINK_SPEED, kNo, kYes, kNo, 0, SetIoctl},
    {VELK_CMD_DNS, kNo, kYes, kYes, 0, SetDns},
}};

constexpr std::array<CommandEntry, 0> kRestartRows{};

}  // namespace

constinit const std::span<const CommandEntry> kGetTable = kGetRows;
constinit const std::span<const CommandEntry> kSetTable = kSetRows;
constinit const std::span<const CommandEntry> kRestartTable = kRestartRows;

}  // namespace velk
