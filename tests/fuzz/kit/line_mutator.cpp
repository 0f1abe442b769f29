// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// line_mutator.cpp - changes an input line by line, as people and programs change these files.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/lines.h"
#include "support/dice.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

namespace fuzz {
namespace {

using testkit::Dice;

// Lines of the device's files and tools.
const std::vector<std::string> kSamples = {
    "auto eth0",
    "iface eth0 inet static",
    "iface eth0 inet dhcp",
    "iface eth1 inet static",
    "iface eth1 inet dhcp",
    "\taddress 192.168.0.10",
    "\tnetmask 255.255.255.0",
    "\tgateway 192.168.0.1",
    "if [ \"$interface\" = \"eth0\" ]; then",
    "if [ \"$interface\" = \"eth1\" ]; then",
    "then",
    "else",
    "fi",
    "\t/usr/sbin/avahi-autoipd -wD eth0",
    "\t/usr/bin/ntpdate -u $new_ntp_servers",
    "\t/sbin/printdhcpnotice.pl eth0",
    "\t/sbin/printdhcpstart.pl eth0",
    "\tmake_resolv_conf",
    "interface \"eth0\" {",
    "interface \"eth1\" {",
    "interface \"eth1\" { request routers; }",
    "}",
    "request subnet-mask, domain-name-servers, ntp-servers;",
    "request routers,",
    "0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log",
    "30 01 * * 0 perl /usr/bin/web_contents_updater.pl",
    "00 */6 * * * perl /usr/bin/web_contents_updater.pl",
    "10 4 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl",
    "nameserver 192.168.0.1",
    "ADMINISTRATOR=admin@example.com",
    "LOCATION=cellar",
    "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10",
    "          inet addr:192.168.0.10  Bcast:192.168.0.255  Mask:255.255.255.0",
    "\tSpeed: 100Mb/s",
    "\tDuplex: Half",
    "\tAuto-negotiation: off",
    "\tLink detected: yes",
    "\tLink detected: no",
    "eth0\t00000000\t0100A8C0\t0003\t0\t0\t0\t00000000\t0\t0\t0",
    "VID=1a2b",
    "PID=3c4d",
    "P:  Vendor=1a2b ProdID=3c4d Rev= 1.00",
    "S:  Product=QT4408RKM",
    " 1 Jan 00:00:00 ntpdate[99]: step time server 192.168.0.1 offset 0.1 sec",
    "kernel: eth0: link up",
    "kernel: eth0: link down",
    "----",
    "#",
    "",
};

std::string Join(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

// One change to one line, or to the order of lines.
void ChangeLines(std::vector<std::string>& lines, Dice& dice) {
    const size_t at = dice.Below(lines.size());
    std::string& line = lines[at];
    switch (dice.Below(8)) {
        case 0:
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), dice.OneOf(kSamples));
            return;
        case 1:
            lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(at));
            return;
        case 2:
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), std::string(line));
            return;
        case 3:
            std::swap(line, lines[dice.Below(lines.size())]);
            return;
        case 4:
            line.insert(0, 1, '#');
            return;
        case 5:
            line.append(dice.OneIn(2) ? " # note" : "\r");
            return;
        case 6:
            line = line.substr(dice.Below(line.size() + 1));
            return;
        default:
            line += " " + dice.OneOf(kSamples);
            return;
    }
}

}  // namespace
}  // namespace fuzz

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned seed) {
    testkit::Dice dice(seed);
    if (size == 0 || dice.OneIn(3)) {
        return LLVMFuzzerMutate(data, size, max_size);
    }
    std::vector<std::string> lines = fuzz::Lines({reinterpret_cast<const char*>(data), size});
    for (size_t changes = 1 + dice.Below(3); changes > 0 && !lines.empty(); --changes) {
        fuzz::ChangeLines(lines, dice);
    }
    const std::string text = fuzz::Join(lines);
    const size_t length = std::min(text.size(), max_size);
    memcpy(data, text.data(), length);
    return length;
}
