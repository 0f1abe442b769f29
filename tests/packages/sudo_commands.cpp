// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sudo_commands.cpp - changes eth0 through sudo by the functions that no command of the library
// uses: address, mask and gateway at once.
#include <cstdio>
#include <cstring>

#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include "velk.h"

int main() {
    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    ifreq port{};
    strcpy(port.ifr_name, VELK_WIRED_INTERFACE);
    std::printf("address %d\n", SetIpAddress(socket, port, 0, "192.168.0.20"));
    std::printf("mask %d\n", SetSubNetMask(socket, port, 0, "255.255.255.0"));
    std::printf("first gateway %d\n", SetDefGateway(socket, port, 0, "192.168.0.1"));
    std::printf("second gateway %d\n", SetDefGateway(socket, port, 0, "192.168.0.2"));
    close(socket);
}
