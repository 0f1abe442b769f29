// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dns.cpp - prints the DNS servers, or sets them: dns [ADDRESS...]
#include <cstdio>
#include <span>
#include <string_view>

#include <arpa/inet.h>
#include <velk.h>

namespace {

_velk_request DnsCommand(velk_command_type type) {
    return {VELK_WIRED_INTERFACE, static_cast<uint32_t>(type), VELK_CMD_DNS, ""};
}

int Failed(int result) {
    (void)fprintf(stderr, "dns: %s\n",
                  result == LIB_VELK_LOCKED ? "another program is changing settings; try again"
                                            : "the library cannot read or change the servers");
    return 1;
}

int PrintServers() {
    const _velk_request request = DnsCommand(VELK_GET);
    _velk_request response{};
    if (const int result = execute_velk_command(&request, &response); result != LIB_VELK_SUCCESS) {
        return Failed(result);
    }
    for (int slot = 0; slot < VELK_DNS_SLOTS; ++slot) {
        const char* server = &response.data[slot * VELK_DNS_SLOT_SIZE];
        if (*server != '\0') {
            printf("%.*s\n", VELK_DNS_SLOT_SIZE, server);
        }
    }
    return 0;
}

// The library does not check addresses, so a program does it first.
bool IsAddress(const char* word) {
    in_addr address{};
    return inet_pton(AF_INET, word, &address) == 1;
}

int SetServers(std::span<char*> servers) {
    if (servers.size() > VELK_DNS_SLOTS) {
        (void)fprintf(stderr, "dns: give at most %d servers\n", VELK_DNS_SLOTS);
        return 2;
    }
    _velk_request request = DnsCommand(VELK_SET);
    char* slot = request.data;
    for (const char* server : servers) {
        if (!IsAddress(server)) {
            (void)fprintf(stderr, "dns: '%s' is not an IPv4 address\n", server);
            return 2;
        }
        // The longest address, 255.255.255.255, fills a slot.
        (void)std::string_view(server).copy(slot, VELK_DNS_SLOT_SIZE);
        slot += VELK_DNS_SLOT_SIZE;
    }
    _velk_request response{};
    const int result = execute_velk_command(&request, &response);
    return result == LIB_VELK_SUCCESS ? 0 : Failed(result);
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::span<char*> servers(argv + 1, argv + argc);
    return servers.empty() ? PrintServers() : SetServers(servers);
}
