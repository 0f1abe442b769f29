// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// gateway.cpp - reads the default gateway from the routing table and replaces it with route(8).
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>

#include "lib/base/data_area.h"
#include "lib/base/line_reader.h"
#include "lib/base/log.h"
#include "lib/base/numbers.h"
#include "lib/base/paths.h"
#include "lib/base/shell.h"
#include "lib/base/words.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

constexpr char kDefaultDestination[] = "00000000";

// Returns the gateway of a default route; no value for any other line. The kernel prints the
// address as it is in memory, so the parsed number is already in network order.
std::optional<in_addr> DefaultGatewayOn(std::string_view line) {
    (void)TakeWord(line);  // the interface
    if (TakeWord(line) != kDefaultDestination) {
        return std::nullopt;
    }
    std::string_view gateway = TakeWord(line);
    if (gateway.starts_with("0x") || gateway.starts_with("0X")) {
        gateway.remove_prefix(2);
    }
    const auto address = ParseLeadingNumber<uint32_t>(gateway, 16);
    if (!address.has_value()) {
        return std::nullopt;
    }
    return in_addr{*address};
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetDefGateway(int /*socket*/, ifreq& ifr, int /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader routes(kRoutingTable);
    if (!routes.is_open()) {
        Log("DelRoutingTable ifs");
        return LIB_VELK_FAILURE;
    }
    const std::string_view name = FieldText(ifr.ifr_name);
    for (std::string_view line; routes.ReadLine(line);) {
        if (!line.starts_with(name)) {
            continue;
        }
        if (const std::optional<in_addr> gateway = DefaultGatewayOn(line)) {
            inet_ntop(AF_INET, &*gateway, out, INET_ADDRSTRLEN);
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}

int SetDefGateway(int socket, ifreq& ifr, int request, const char* value) {
    if (value == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const CommandLine add("sudo route add default gw %s", value);
    if (!add.fits()) {
        return add.Run();  // refused before the old route is removed
    }
    char current[INET_ADDRSTRLEN] = "";
    if (GetDefGateway(socket, ifr, request, current) == LIB_VELK_SUCCESS) {
        // Without a default route the line names no gateway; its failure is not detected.
        const int deleted = CommandLine("sudo route del default gw %s", current).Run();
        if (deleted != LIB_VELK_SUCCESS) {
            return deleted;
        }
    }
    return add.Run();
}
