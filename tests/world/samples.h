// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// samples.h - the file that the tests of this ring must find complete.
#ifndef TESTS_WORLD_SAMPLES_H_
#define TESTS_WORLD_SAMPLES_H_

#include <string>

namespace world {

// The interfaces file with this address of eth0. All addresses of one length give files of one
// size.
inline std::string InterfacesWith(const std::string& address) {
    return "auto lo\niface lo inet loopback\n\nauto eth0\niface eth0 inet static\n\taddress " +
           address +
           "\n\tnetmask 255.255.255.0\n\tgateway 192.168.0.1\n\nauto eth1\niface eth1 inet dhcp\n";
}

}  // namespace world

#endif  // TESTS_WORLD_SAMPLES_H_
