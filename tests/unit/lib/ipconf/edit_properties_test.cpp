// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "support/edit_properties.h"

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/dice.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testkit::Dice;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kInterfacesFile;
using testkit::kRounds;
using testkit::Lines;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::Split;
using testkit::WriteFile;

constexpr char kOn = 1;
constexpr char kOff = 2;

// A line of a file and whom it is for: "eth0", "eth1", or "" for both.
struct OwnedLine {
    std::string text;
    std::string owner;
};
using OwnedLines = std::vector<OwnedLine>;

std::string Text(const OwnedLines& lines) {
    std::string text;
    for (const OwnedLine& line : lines) {
        text += line.text + "\n";
    }
    return text;
}

std::string Other(const std::string& interface) {
    return interface == "eth0" ? "eth1" : "eth0";
}

// ---- /etc/network/interfaces

const Lines kBodyLines = {
    "\taddress 192.168.0.10",
    "\tnetmask 255.255.255.0",
    "\tgateway 192.168.0.1",
    "    address 10.0.0.1 # spare",
    "#\tgateway 10.0.0.254",
    "\thwaddress ether 02:00:00:00:00:10",
    "\tup route add default gateway 10.0.0.9 || true",
    "gateway",
    "address\t1.1.1.1",
    "",
    "\r",
    "\taddress 10.0.0.2\r",
    "auto eth1",
    "auto eth0",
    "# iface eth0 inet static",
    " iface eth0 inet dhcp",
    "\tiface eth1 inet dhcp",
    "mapping eth0 iface",
    "\xff\xfe\x80",
    "\taddress ",
    "Iface eth1 inet static",
};

const Lines kHeaders = {
    "iface eth0 inet static",      "iface eth0 inet dhcp",
    "iface eth1 inet static",      "iface eth1 inet dhcp",
    "iface lo inet loopback",      "iface eth0 inet manual # off",
    "iface eth1 inet dhcp\r",      "iface eth0 inet6 auto",
    "iface eth01 inet static",     "iface",
    "ifaceeth0 inet dhcp",         "iface eth0  inet static",
    "iface eth1 inet static hold", "iface eth0 inet ",
};

bool IsHeaderOf(const std::string& line, const std::string& interface) {
    return line.rfind("iface " + interface + " inet ", 0) == 0;
}

// A file of stanzas. With `single`, one interface has one stanza at most.
std::string RandomInterfaces(Dice& dice, const std::string& single = "") {
    std::string text;
    bool has_single = false;
    const size_t count = dice.Below(25);
    for (size_t i = 0; i < count; ++i) {
        const std::string& line = dice.OneOf(dice.OneIn(4) ? kHeaders : kBodyLines);
        if (!single.empty() && IsHeaderOf(line, single)) {
            if (has_single) {
                continue;
            }
            has_single = true;
        }
        text += (dice.OneIn(300) ? std::string(70000, 'x') + line : line) + "\n";
    }
    if (!text.empty() && dice.OneIn(4)) {
        text.pop_back();
    }
    return text;
}

// Every line of an interface's stanzas, in file order.
Lines StanzaLines(const std::string& text, const std::string& interface) {
    Lines found;
    bool inside = false;
    for (const std::string& line : Split(text)) {
        if (line.rfind("iface", 0) == 0) {
            inside = IsHeaderOf(line, interface);
        }
        if (inside) {
            found.push_back(line);
        }
    }
    return found;
}

class EditPropertiesTest : public testkit::DeviceTest {
  protected:
    static std::string SetMethod(const std::string& interface, char method) {
        const _velk_request request =
            MakeRequest(VELK_SET, VELK_CMD_IP_METHOD, interface, {&method, 1});
        EXPECT_EQ(SetIpSettingMethod(request, nullptr), 0);
        return ReadFile(kInterfacesFile);
    }
    static std::string SetValue(const std::string& interface, const std::string& key,
                                const std::string& value) {
        const _velk_request request = MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, interface, value);
        EXPECT_EQ(SetAddressConf(request, key.c_str()), 0);
        return ReadFile(kInterfacesFile);
    }
    static std::string SwitchBlock(const std::string& interface, bool enable) {
        EXPECT_EQ(SetDhcpRequest(interface, enable), 0);
        return ReadFile(kDhcpConfigFile);
    }
    static std::string SwitchHook(const std::string& interface, char state) {
        const _velk_request request = MakeRequest(VELK_SET, VELK_CMD_APIPA, interface, {&state, 1});
        EXPECT_EQ(SetApipa(request, nullptr), 0);
        return ReadFile(kExitHooks);
    }
    testkit::FakeShell shell;
};

const Lines kKeys = {"address ", "netmask ", "gateway "};
const Lines kValues = {"10.9.8.7", "255.255.0.0", "x # y", " 1.1.1.1 ", std::string(511, '9')};

TEST_F(EditPropertiesTest, AMethodChangesTheHeadersOfItsInterfaceAndNothingElse) {
    Dice dice(501);
    WriteFile(kDhcpConfigFile, "");
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const bool is_dhcp = dice.OneIn(2);
        const std::string before = RandomInterfaces(dice);
        WriteFile(kInterfacesFile, before);
        const std::string after = SetMethod(interface, is_dhcp ? 2 : 1);
        const std::string header = "iface " + interface + " inet " + (is_dhcp ? "dhcp" : "static");
        Lines expected = Split(before);
        for (std::string& line : expected) {
            if (IsHeaderOf(line, interface)) {
                line = header;
            }
        }
        ASSERT_EQ(Split(after), expected) << "round " << round;
        ASSERT_TRUE(after.empty() || after.back() == '\n') << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AMethodSetTwiceIsAMethodSetOnce) {
    Dice dice(502);
    WriteFile(kDhcpConfigFile, "");
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const char method = dice.OneIn(2) ? 1 : 2;
        WriteFile(kInterfacesFile, RandomInterfaces(dice));
        const std::string once = SetMethod(interface, method);
        ASSERT_EQ(SetMethod(interface, method), once) << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AMethodLeavesTheOtherInterfacesStanzasAsTheyWere) {
    Dice dice(503);
    WriteFile(kDhcpConfigFile, "");
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string before = RandomInterfaces(dice);
        WriteFile(kInterfacesFile, before);
        const std::string after = SetMethod(interface, dice.OneIn(2) ? 1 : 2);
        ASSERT_EQ(StanzaLines(after, Other(interface)), StanzaLines(before, Other(interface)))
            << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AnAddressSetTwiceIsAnAddressSetOnce) {
    Dice dice(504);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string& key = dice.OneOf(kKeys);
        const std::string& value = dice.OneOf(kValues);
        WriteFile(kInterfacesFile, RandomInterfaces(dice, interface));
        const std::string once = SetValue(interface, key, value);
        ASSERT_EQ(SetValue(interface, key, value), once) << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AnAddressLeavesTheOtherInterfacesStanzasAsTheyWere) {
    Dice dice(505);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string& key = dice.OneOf(kKeys);
        const std::string value = dice.OneIn(4) ? "" : dice.OneOf(kValues);
        const std::string before = RandomInterfaces(dice);
        WriteFile(kInterfacesFile, before);
        const std::string after = SetValue(interface, key, value);
        ASSERT_EQ(StanzaLines(after, Other(interface)), StanzaLines(before, Other(interface)))
            << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AnAddressChangesOneLineOfAnInterfaceWithOneStanza) {
    Dice dice(506);
    int found = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string& key = dice.OneOf(kKeys);
        const std::string& value = dice.OneOf(kValues);
        const std::string before = RandomInterfaces(dice, interface);
        WriteFile(kInterfacesFile, before);
        Lines without = Split(SetValue(interface, key, value));
        const Lines old_lines = Split(before);
        const std::string line = std::string("\t").append(key).append(value);
        // The lines before and after the change are the old ones.
        size_t same = 0;
        while (same < without.size() && same < old_lines.size() &&
               without[same] == old_lines[same]) {
            ++same;
        }
        if (same == without.size()) {
            ASSERT_EQ(without, old_lines) << "round " << round;
            continue;
        }
        ++found;
        ASSERT_EQ(without[same], line) << "round " << round;
        const Lines rest(without.begin() + static_cast<long>(same) + 1, without.end());
        const bool is_inserted = without.size() == old_lines.size() + 1;
        const size_t skipped = is_inserted ? same : same + 1;
        ASSERT_EQ(rest, Lines(old_lines.begin() + static_cast<long>(skipped), old_lines.end()))
            << "round " << round;
        ASSERT_EQ(old_lines[same].rfind("iface", 0) == 0, is_inserted) << "round " << round;
    }
    EXPECT_GT(found, kRounds / 4) << "the files are of little use";
}

TEST_F(EditPropertiesTest, AnAddressThatFoundItsLineIsReadBack) {
    Dice dice(507);
    for (int round = 0; round < kRounds; ++round) {
        const std::string& key = dice.OneOf(kKeys);
        const std::string& value = dice.OneOf(kValues);
        WriteFile(kInterfacesFile, RandomInterfaces(dice, "eth0") + "\niface eth1 inet dhcp\n");
        const std::string after = SetValue("eth0", key, value);
        char out[VELK_DATA_SIZE] = "none";
        EXPECT_EQ(GetAddressConf(MakeRequest(VELK_GET, 104, "eth0"), key.c_str(), out), 0);
        const bool has_stanza = !StanzaLines(after, "eth0").empty();
        ASSERT_EQ(std::string(out), has_stanza ? value : "none") << "round " << round;
    }
}

// ---- /etc/dhclient.conf

const Lines kGlobalStatements = {
    "timeout 60;",
    "request subnet-mask, routers;",
    "send host-name \"eth0\";",
    "# the wired port",
    "#request ntp-servers;",
    "interfaces \"eth0\" {",
    "my-interface \"eth1\" {",
    "",
    "\r",
    "\xff\xfe",
    "alias {",
    "option x code 121 = string; # eth0",
};

const Lines kBlockStatements = {
    "  request subnet-mask,",
    "    ntp-servers;",
    "\tsend dhcp-client-identifier 1:2:3;",
    "",
    "\r",
    "interfaces x",
    "  supersede domain-name \"x.test\";",
    "reject 10.0.0.1;}",
    "\xff\xfe",
    "  interface \"eth1\" {",
    "  interface \"eth0\" {",
};

const Lines kBlockEnds = {"}", "  }", "\t};", "} x"};

// A file of global lines and blocks. A block's lines hold no "#", or all of them one in column one.
OwnedLines RandomConfig(Dice& dice) {
    OwnedLines lines;
    const size_t count = dice.Below(8);
    for (size_t i = 0; i < count; ++i) {
        if (dice.OneIn(2)) {
            lines.push_back({dice.OneOf(kGlobalStatements), ""});
            continue;
        }
        const std::string owner = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string mark = dice.OneIn(3) ? "#" : "";
        std::string opening = mark + "interface \"";
        opening.append(owner).append("\" {");
        lines.push_back({opening, owner});
        for (size_t statements = dice.Below(5); statements > 0; --statements) {
            lines.push_back({mark + dice.OneOf(kBlockStatements), owner});
        }
        lines.push_back({mark + dice.OneOf(kBlockEnds), owner});
    }
    return lines;
}

OwnedLines WithBlocksSwitched(OwnedLines lines, const std::string& interface, bool enable) {
    for (OwnedLine& line : lines) {
        if (line.owner != interface) {
            continue;
        }
        const bool is_off = !line.text.empty() && line.text[0] == '#';
        if (enable && is_off) {
            line.text.erase(0, 1);
        } else if (!enable && !is_off) {
            line.text.insert(0, "#");
        }
    }
    return lines;
}

TEST_F(EditPropertiesTest, ASwitchChangesTheInterfacesBlocksAndNothingElse) {
    Dice dice(601);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const bool enable = dice.OneIn(2);
        const OwnedLines lines = RandomConfig(dice);
        WriteFile(kDhcpConfigFile, Text(lines));
        ASSERT_EQ(SwitchBlock(interface, enable),
                  Text(WithBlocksSwitched(lines, interface, enable)))
            << "round " << round;
    }
}

TEST_F(EditPropertiesTest, ABlockSwitchedOffAndOnIsAsItWas) {
    Dice dice(602);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string active =
            Text(WithBlocksSwitched(RandomConfig(dice), interface, /*enable=*/true));
        WriteFile(kDhcpConfigFile, active);
        const std::string off = SwitchBlock(interface, false);
        ASSERT_EQ(SwitchBlock(interface, true), active) << "round " << round;
        ASSERT_EQ(SwitchBlock(interface, false), off) << "round " << round;
    }
}

// A file without any order.
std::string HostileConfig(Dice& dice) {
    static const Lines kPieces = {"interface \"eth0\" {",
                                  "interface \"eth1\" {",
                                  "}",
                                  "#}",
                                  " #",
                                  "#interface eth0 {",
                                  "interface eth1 { }",
                                  "x}",
                                  "# }",
                                  "request a;",
                                  "##x",
                                  "",
                                  "};",
                                  "interface eth0 { }",
                                  " interface",
                                  "\r",
                                  "a # }"};
    std::string text;
    for (size_t count = dice.Below(30); count > 0; --count) {
        text += dice.OneOf(kPieces);
        text += dice.OneIn(6) ? " " : "\n";
    }
    return text;
}

TEST_F(EditPropertiesTest, ABlockSwitchedOffTwiceIsABlockSwitchedOffOnce) {
    Dice dice(603);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(3) ? "" : dice.OneIn(2) ? "eth0" : "eth1";
        WriteFile(kDhcpConfigFile, HostileConfig(dice));
        const std::string once = SwitchBlock(interface, false);
        ASSERT_EQ(SwitchBlock(interface, false), once) << "round " << round;
    }
}

TEST_F(EditPropertiesTest, ASwitchPutsInOrTakesOutOneHashOfALine) {
    Dice dice(604);
    for (int round = 0; round < kRounds; ++round) {
        const bool enable = dice.OneIn(2);
        const std::string text = HostileConfig(dice);
        WriteFile(kDhcpConfigFile, text);
        const Lines before = Split(text);
        const Lines after = Split(SwitchBlock("eth0", enable));
        ASSERT_EQ(after.size(), before.size()) << "round " << round;
        for (size_t i = 0; i < before.size(); ++i) {
            std::string switched = before[i];
            const size_t mark = switched.find('#');
            if (enable && mark != std::string::npos) {
                switched.erase(mark, 1);
            } else if (!enable && mark == std::string::npos) {
                switched.insert(0, "#");
            }
            ASSERT_TRUE(after[i] == before[i] || after[i] == switched)
                << "round " << round << ": " << after[i];
        }
    }
}

// ---- /etc/dhclient-exit-hooks

const Lines kScriptLines = {
    "/usr/sbin/avahi-autoipd -D $interface",
    "  /usr/sbin/avahi-autoipd --kill \"$interface\"",
    "\tsudo /usr/sbin/avahi-autoipd -w; true",
    "x=/usr/sbin/avahi-autoipd.action",
    "/usr/sbin/avahi-autoipd\r",
    "/usr/bin/ntpdate -b ntp",
    "/sbin/printdhcpnotice.pl",
    "",
    "\r",
    "profile $interface eth0 eth1",
    "ifconfig $interface",
    "elsewhere; thence",
    "case $interface in eth0) ;; esac",
    "\xff\xfe",
};

// A script without a "#" and without a command on a line with a keyword.
OwnedLines RandomScript(Dice& dice) {
    OwnedLines lines;
    const auto add = [&](const std::string& owner) {
        for (size_t count = dice.Below(4); count > 0; --count) {
            lines.push_back({dice.OneOf(kScriptLines), owner});
        }
    };
    for (size_t segments = dice.Below(6); segments > 0; --segments) {
        add("");
        const std::string named = dice.OneIn(2) ? "eth0" : "eth1";
        const std::string condition =
            "if [ \"$interface\" " + std::string(dice.OneIn(4) ? "!=" : "=") + " " + named + " ]";
        if (dice.OneIn(2)) {
            lines.push_back({condition + "; then", ""});
        } else {
            lines.push_back({condition, ""});
            lines.push_back({"  then", ""});
        }
        add(named);
        if (dice.OneIn(2)) {
            lines.push_back({"else", ""});
            add(Other(named));
        }
        lines.push_back({dice.OneIn(2) ? "fi" : "\tfi; true", ""});
    }
    add("");
    return lines;
}

TEST_F(EditPropertiesTest, AHookSwitchedOffIsOffForItsInterfaceAlone) {
    Dice dice(701);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(3) ? "" : dice.OneIn(2) ? "eth0" : "eth1";
        OwnedLines lines = RandomScript(dice);
        WriteFile(kExitHooks, Text(lines));
        for (OwnedLine& line : lines) {
            const bool runs = interface.empty() || line.owner.empty() || line.owner == interface;
            if (runs && line.text.find("/usr/sbin/avahi-autoipd") != std::string::npos) {
                line.text.insert(0, "#");
            }
        }
        ASSERT_EQ(SwitchHook(interface, kOff), Text(lines)) << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AHookSwitchedOffAndOnIsAsItWas) {
    Dice dice(702);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(3) ? "" : dice.OneIn(2) ? "eth0" : "eth1";
        const std::string before = Text(RandomScript(dice));
        WriteFile(kExitHooks, before);
        const std::string off = SwitchHook(interface, kOff);
        ASSERT_EQ(SwitchHook(interface, kOff), off) << "round " << round;
        ASSERT_EQ(SwitchHook(interface, kOn), before) << "round " << round;
        ASSERT_EQ(SwitchHook(interface, kOn), before) << "round " << round;
    }
}

TEST_F(EditPropertiesTest, AHookSwitchedOffIsReadAsOff) {
    Dice dice(703);
    for (int round = 0; round < kRounds; ++round) {
        const std::string interface = dice.OneIn(2) ? "eth0" : "eth1";
        const OwnedLines lines = RandomScript(dice);
        WriteFile(kExitHooks, Text(lines));
        const _velk_request request = MakeRequest(VELK_GET, VELK_CMD_APIPA, interface);
        char out[VELK_DATA_SIZE] = "";
        char expected = kOff;
        for (const OwnedLine& line : lines) {
            const bool is_daemon = line.text.find("/usr/sbin/avahi-autoipd ") != std::string::npos;
            if (is_daemon && (line.owner.empty() || line.owner == interface)) {
                expected = kOn;
            }
        }
        EXPECT_EQ(GetApipa(request, out), 0);
        ASSERT_EQ(out[0], expected) << "round " << round;
        (void)SwitchHook(interface, kOff);
        EXPECT_EQ(GetApipa(request, out), 0);
        ASSERT_EQ(out[0], kOff) << "round " << round;
    }
}

// ---- the files themselves, with the real shell

class EditedFilesTest : public testkit::DeviceTest {};

TEST_F(EditedFilesTest, InodeOwnerAndModeSurviveEveryEdit) {
    Dice dice(801);
    for (int round = 0; round < 25; ++round) {
        WriteFile(kInterfacesFile, RandomInterfaces(dice));
        WriteFile(kDhcpConfigFile, HostileConfig(dice));
        WriteFile(kExitHooks, Text(RandomScript(dice)));
        testkit::ChangeOwnerAndMode({kInterfacesFile, kDhcpConfigFile, kExitHooks}, dice);
        const auto before = testkit::IdentitiesOf({kInterfacesFile, kDhcpConfigFile, kExitHooks});
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_METHOD, "eth0", dice.OneIn(2) ? "\x01" : "\x02"),
                  0);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_APIPA, "eth1", dice.OneIn(2) ? "\x01" : "\x02"), 0);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_GATEWAY, "eth0", dice.OneIn(2) ? "" : "10.0.0.1"), 0);
        ASSERT_EQ(testkit::IdentitiesOf({kInterfacesFile, kDhcpConfigFile, kExitHooks}), before)
            << "round " << round;
    }
}

}  // namespace
