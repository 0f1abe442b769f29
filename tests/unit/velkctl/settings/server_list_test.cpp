// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/server_list.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "support/words.h"
#include "unit/velkctl/settings/problem.h"

namespace {

using testkit::DataOf;
using testkit::Problem;
using testkit::Words;
using velkctl::Data;
using velkctl::Parsed;
using velkctl::ServerListKind;

constexpr ServerListKind kServerList{};

// The data bytes that begin with these; the rest is zero.
std::string Slot(const std::string& text) {
    std::string slot = text;
    slot.resize(16, '\0');
    return slot;
}

TEST(ServerListParse, OneAddressFillsTheFirstSlot) {
    const Parsed parsed = kServerList.Parse(Words{"192.168.0.1"});
    EXPECT_EQ(parsed.problem, "");
    EXPECT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.data, DataOf("192.168.0.1"));
}

TEST(ServerListParse, ThreeAddressesLieInSlotsOf16Bytes) {
    const Parsed parsed = kServerList.Parse(Words{"223.255.255.254", "1.0.0.1", "192.168.100.200"});
    EXPECT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.data,
              DataOf(Slot("223.255.255.254") + Slot("1.0.0.1") + Slot("192.168.100.200")));
}

TEST(ServerListParse, BlanksAndCommasSeparateServers) {
    const Data expected = kServerList.Parse(Words{"1.1.1.1", "2.2.2.2"}).data;
    for (const Words& words :
         {Words{"1.1.1.1 2.2.2.2"}, Words{"1.1.1.1,2.2.2.2"}, Words{"1.1.1.1, 2.2.2.2"},
          Words{"1.1.1.1,", " 2.2.2.2 "}, Words{",1.1.1.1,,2.2.2.2"}}) {
        const Parsed parsed = kServerList.Parse(words);
        EXPECT_EQ(parsed.problem, "");
        EXPECT_EQ(parsed.data, expected);
        EXPECT_EQ(kServerList.Force(words).data, expected);
    }
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1 2.2.2.2,3.3.3.3", "4.4.4.4"}),
              "4 addresses given; give one to three IPv4 addresses such as 192.168.0.1, or none");
}

TEST(ServerListParse, NoneIsAllZero) {
    const Parsed parsed = kServerList.Parse(Words{"none"});
    EXPECT_TRUE(parsed.ok());
    EXPECT_EQ(parsed.data, Data{});
}

TEST(ServerListParse, NoWordIsNoList) {
    EXPECT_EQ(Problem(kServerList, {}),
              "no value given; give one to three IPv4 addresses such as 192.168.0.1, or none");
}

TEST(ServerListParse, FourAddressesAreTooMany) {
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "2.2.2.2", "3.3.3.3", "4.4.4.4"}),
              "4 addresses given; give one to three IPv4 addresses such as 192.168.0.1, or none");
}

TEST(ServerListParse, NoneTakesNoOtherValue) {
    const std::string problem = "'none' takes no other value; give either addresses or none";
    EXPECT_EQ(Problem(kServerList, {"none", "1.1.1.1"}), problem);
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "none"}), problem);
    EXPECT_EQ(Problem(kServerList, {"none", "none"}), problem);
}

TEST(ServerListParse, NamesTheWordThatIsNoAddress) {
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "300.1.1.1"}),
              "'300.1.1.1' is not an IPv4 address; give one to three IPv4 addresses such as "
              "192.168.0.1, or none");
}

TEST(ServerListParse, ShowsControlCharactersEscaped) {
    EXPECT_EQ(Problem(kServerList, {"\x1b[31m\n"}),
              "'\\x1b[31m\\x0a' is not an IPv4 address; "
              "give one to three IPv4 addresses such as 192.168.0.1, or none");
}

TEST(ServerListParse, RefusesAddressesThatNoServerCanHave) {
    const std::string wanted = "; give one to three IPv4 addresses such as 192.168.0.1, or none";
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "0.0.0.0"}),
              "'0.0.0.0' is not the address of a host, as it begins with 0" + wanted);
    EXPECT_EQ(Problem(kServerList, {"255.255.255.255"}),
              "'255.255.255.255' is the broadcast address" + wanted);
    EXPECT_EQ(Problem(kServerList, {"224.0.0.1"}), "'224.0.0.1' is a multicast address" + wanted);
    EXPECT_EQ(Problem(kServerList, {"240.0.0.1"}), "'240.0.0.1' is a reserved address" + wanted);
    EXPECT_EQ(
        Problem(kServerList, {"1.1.1.010"}),
        "'1.1.1.010' has a number with a leading zero; other programs read it as octal" + wanted);
}

TEST(ServerListParse, RefusesTheDeviceItselfUnlessForced) {
    EXPECT_EQ(Problem(kServerList, {"127.0.0.1"}),
              "'127.0.0.1' is a loopback address; the device reaches only itself there; give "
              "other addresses, or none");
    EXPECT_EQ(kServerList.Parse(Words{"127.0.0.1"}).or_force, ", or --force for a local resolver");
    EXPECT_EQ(kServerList.Parse(Words{"foo"}).or_force, "");
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "foo", "bar", "1.2.3.4"}),
              "'foo' is not an IPv4 address; 'bar' is not an IPv4 address; 4 addresses given; give "
              "one to three IPv4 addresses such as 192.168.0.1, or none");
    EXPECT_EQ(kServerList.Force(Words{"127.0.0.1"}).data, DataOf("127.0.0.1"));
}

TEST(ServerListParse, RefusesAServerGivenTwice) {
    EXPECT_EQ(Problem(kServerList, {"1.1.1.1", "2.2.2.2", "1.1.1.1"}),
              "'1.1.1.1' is given twice; give every server once");
}

class NoAddress : public testing::TestWithParam<std::string> {};

TEST_P(NoAddress, IsRefusedAndLeavesTheDataZero) {
    const Parsed parsed = kServerList.Parse(Words{GetParam()});
    EXPECT_FALSE(parsed.ok());
    EXPECT_TRUE(parsed.problem.find(" is not an IPv4 address; ") != std::string::npos ||
                parsed.problem.find(" leading zero; ") != std::string::npos)
        << parsed.problem;
    EXPECT_EQ(parsed.data, Data{});
}

INSTANTIATE_TEST_SUITE_P(ServerListParse, NoAddress,
                         testing::Values("", " ", "1", "1.1", "1.1.1", "1.1.1.", ".1.1.1",
                                         "1.1.1.1.", "1.1.1.1.1", "1..1.1", "256.1.1.1",
                                         "1.1.1.256", "1.1.1.-1", "+1.1.1.1", "01.1.1.1",
                                         "1.1.1.010", "0x1.1.1.1", ",", " , ", "1.1.1.1;2.2.2.2",
                                         "1.1.1.1\n", "1.1.1.a", "1.1.1.1/24", "1.1.1.1,x", "::1",
                                         "::ffff:1.1.1.1", "1.1.1.1\t", "localhost", "NONE", "None",
                                         "1.1.1.9999999999", std::string("1.1.1.1\0x", 9)));

TEST(ServerListPrint, SeparatesAddressesByBlanks) {
    EXPECT_EQ(kServerList.Print(DataOf("192.168.0.1")), "192.168.0.1");
    EXPECT_EQ(kServerList.Print(DataOf(Slot("1.1.1.1") + Slot("2.2.2.2"))), "1.1.1.1 2.2.2.2");
    EXPECT_EQ(kServerList.Print(
                  DataOf(Slot("255.255.255.255") + Slot("255.255.255.254") + Slot("1.2.3.4"))),
              "255.255.255.255 255.255.255.254 1.2.3.4");
}

TEST(ServerListPrint, AnEmptyListIsNone) {
    EXPECT_EQ(kServerList.Print(Data{}), "none");
}

TEST(ServerListPrint, ServersAfterAnEmptySlotAreShown) {
    EXPECT_EQ(kServerList.Print(DataOf(Slot("") + Slot("2.2.2.2"))), "2.2.2.2");
    EXPECT_EQ(kServerList.Print(DataOf(Slot("1.1.1.1") + Slot("") + Slot("3.3.3.3"))),
              "1.1.1.1 3.3.3.3");
}

TEST(ServerListPrint, AFilledSlotEndsWhereTheNextBegins) {
    EXPECT_EQ(kServerList.Print(DataOf("2001:db8::1:2:3a" + Slot("2.2.2.2"))),
              "2001:db8::1:2:3a 2.2.2.2");
    EXPECT_EQ(kServerList.Print(DataOf("aaaaaaaaaaaaaaaabbbbbbbbbbbbbbbbccccccccccccccccd")),
              "aaaaaaaaaaaaaaaa bbbbbbbbbbbbbbbb cccccccccccccccc");
}

TEST(ServerListPrint, AFilledSlotShowsItsNulsToo) {
    EXPECT_EQ(kServerList.Print(DataOf(std::string("1.1.1.1\0........", 16))),
              "1.1.1.1\\x00........");
    EXPECT_EQ(kServerList.Print(DataOf(std::string(15, '\0') + "x")),
              "\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00\\x00x");
}

TEST(ServerListPrint, BytesAfterTheNulOfASlotAreNotShown) {
    EXPECT_EQ(kServerList.Print(DataOf(Slot(std::string("1.1.1.1\0rest", 12)))), "1.1.1.1");
}

TEST(ServerListPrint, BytesThatAreNoTextAreEscaped) {
    EXPECT_EQ(kServerList.Print(DataOf("\x1b[31m\n\x7f\xff")), "\\x1b[31m\\x0a\\x7f\\xff");
    EXPECT_EQ(kServerList.Print(DataOf("a b\\")), "a\\x20b\\");
}

TEST(ServerListPrint, TextInUtf8IsShown) {
    EXPECT_EQ(kServerList.Print(DataOf("n\xc3\xa4me \xc3")), "n\xc3\xa4me\\x20\\xc3");
}

TEST(ServerListPrint, BytesAfterTheSlotsDoNotCount) {
    EXPECT_EQ(kServerList.Print(DataOf(std::string(48, '\0') + "4.4.4.4")), "none");
}

TEST(ServerListPrint, NoByteReachesTheTerminalRaw) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string shown =
            kServerList.Print(DataOf(std::string(1, static_cast<char>(byte))));
        for (const char c : shown) {
            EXPECT_TRUE(c > ' ' && c <= '~') << "byte " << byte << " is shown as " << shown;
        }
    }
}

TEST(ServerList, APrintedListIsParsedToTheSameBytes) {
    for (const Words& words : {Words{"none"}, Words{"1.2.3.4"}, Words{"1.2.3.4", "5.6.7.8"},
                               Words{"223.255.255.254", "1.0.0.1", "10.0.0.1"}}) {
        const Parsed first = kServerList.Parse(words);
        ASSERT_TRUE(first.ok());
        std::string joined;
        for (const std::string& word : words) {
            joined += (joined.empty() ? "" : " ") + word;
        }
        EXPECT_EQ(kServerList.Print(first.data), joined);
        EXPECT_EQ(kServerList.Parse(Words{joined}).data, first.data);
    }
}

}  // namespace
