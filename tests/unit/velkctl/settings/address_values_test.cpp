// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/settings/address_values.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "support/words.h"
#include "unit/velkctl/settings/problem.h"
#include "velkctl/settings/kinds_of_settings.h"
#include "velkctl/text/ipv4.h"

namespace {

using testkit::DataOf;
using testkit::Problem;
using testkit::Words;
using velkctl::Data;
using velkctl::IsMask;
using velkctl::kAddress;
using velkctl::kGateway;
using velkctl::kNetmask;
using velkctl::ParseIpv4;

TEST(ParseIpv4, ReadsFourDecimalNumbers) {
    EXPECT_EQ(ParseIpv4("0.0.0.0"), 0U);
    EXPECT_EQ(ParseIpv4("192.168.0.10"), 0xC0A8000AU);
    EXPECT_EQ(ParseIpv4("255.255.255.255"), 0xFFFFFFFFU);
}

TEST(ParseIpv4, ReadsNothingElse) {
    for (const std::string word :
         {"", "1", "1.2.3", "1.2.3.4.5", "256.0.0.1", "1.2.3.04", " 1.2.3.4", "1.2.3.4 ",
          "1.2.3.4\n", "0x1.2.3.4", "a.b.c.d", "1,2,3,4", "::1", "1.2.3.-4", "1.2..4"}) {
        EXPECT_EQ(ParseIpv4(word), std::nullopt) << word;
    }
    EXPECT_EQ(ParseIpv4(std::string("1.2.3.4\0", 8)), std::nullopt);
}

TEST(IsMask, TakesOnesInFrontOfZeros) {
    uint32_t mask = 0;
    for (unsigned bits = 1; bits <= 32; ++bits) {
        mask |= 1U << (32 - bits);
        EXPECT_TRUE(IsMask(mask)) << bits;
    }
    for (const uint32_t other :
         {0U, 1U, 0xFFU, 0x7FFFFFFFU, 0xFF00FF00U, 0xFFFFFF01U, 0xFFFFFFFDU, 0x00FFFFFFU}) {
        EXPECT_FALSE(IsMask(other)) << other;
    }
}

TEST(AddressKindParse, StoresTheTextUnchanged) {
    EXPECT_EQ(kAddress.Parse(Words{"192.168.0.10"}).data, DataOf("192.168.0.10"));
    EXPECT_EQ(kNetmask.Parse(Words{"255.255.255.128"}).data, DataOf("255.255.255.128"));
    EXPECT_EQ(kGateway.Parse(Words{"10.0.0.1"}).data, DataOf("10.0.0.1"));
    EXPECT_TRUE(kAddress.Parse(Words{"1.0.0.0"}).ok());
    EXPECT_TRUE(kAddress.Parse(Words{"126.255.255.255"}).ok());
    EXPECT_TRUE(kAddress.Parse(Words{"128.0.0.0"}).ok());
    EXPECT_TRUE(kAddress.Parse(Words{"223.255.255.255"}).ok());
}

TEST(AddressKindParse, OnlyAGatewayCanBeNone) {
    EXPECT_TRUE(kGateway.Parse(Words{"none"}).ok());
    EXPECT_EQ(kGateway.Parse(Words{"none"}).data, Data{});
    EXPECT_EQ(Problem(kAddress, {"none"}),
              "'none' is not an IPv4 address; give an IPv4 address such as 192.168.0.10");
    EXPECT_EQ(Problem(kNetmask, {"none"}),
              "'none' is not an IPv4 mask; give an IPv4 mask such as 255.255.255.0");
}

TEST(AddressKindParse, SaysWhyNoInterfaceCanHaveAnAddress) {
    const auto refused = [](const std::string& word, const std::string& why) {
        const std::string problem = "'" + word + "' " + why + "; give an IPv4 address";
        EXPECT_EQ(Problem(kAddress, {word}), problem + " such as 192.168.0.10");
        EXPECT_EQ(Problem(kGateway, {word}), problem + " such as 192.168.0.1, or none");
    };
    refused("0.0.0.0", "is not the address of a host, as it begins with 0");
    refused("0.1.2.3", "is not the address of a host, as it begins with 0");
    refused("127.0.0.1", "is a loopback address; the device reaches only itself there");
    refused("224.0.0.1", "is a multicast address");
    refused("239.255.255.255", "is a multicast address");
    refused("240.0.0.0", "is a reserved address");
    refused("255.255.255.255", "is the broadcast address");
    const std::string octal = "has a number with a leading zero; other programs read it as octal";
    refused("192.168.0.010", octal);
    refused("00.1.1.1", octal);
}

TEST(AddressKindParse, RefusesTextThatIsNoAddress) {
    for (const std::string word : {"192.168.0.300", "192.168.0.0300", "0x1.2.3.4", "none"}) {
        EXPECT_EQ(
            Problem(kAddress, {word}),
            "'" + word + "' is not an IPv4 address; give an IPv4 address such as 192.168.0.10");
    }
    EXPECT_EQ(Problem(kAddress, {"10.0.0.1\nup reboot"}),
              "'10.0.0.1\\x0aup reboot' is not an IPv4 address; give an IPv4 address such as "
              "192.168.0.10");
    EXPECT_EQ(Problem(kGateway, {""}),
              "'' is not an IPv4 address; give an IPv4 address such as 192.168.0.1, or none");
    EXPECT_EQ(kAddress.Parse(Words{"10.0.0.300"}).data, Data{});
}

TEST(AddressKindParse, SaysWhyAPrefixLengthIsNotValid) {
    const std::string wanted = "; give an IPv4 mask such as 255.255.255.0";
    EXPECT_EQ(Problem(kNetmask, {"33"}), "'33' is no mask: a prefix length is 1 to 32" + wanted);
    EXPECT_EQ(Problem(kNetmask, {"/33"}), "'/33' is no mask: a prefix length is 1 to 32" + wanted);
    EXPECT_EQ(Problem(kNetmask, {"/"}), "'/' has no prefix length" + wanted);
    EXPECT_EQ(Problem(kNetmask, {""}), "'' is not an IPv4 mask" + wanted);
}

TEST(AddressKindParse, SaysWhyAMaskIsNotValid) {
    EXPECT_EQ(Problem(kNetmask, {"255.0.255.0"}),
              "'255.0.255.0' is not a mask: a zero precedes a one; give an IPv4 mask such as "
              "255.255.255.0");
    EXPECT_EQ(Problem(kNetmask, {"0.0.0.0"}),
              "'0.0.0.0' is not a mask: it has no ones; give an IPv4 mask such as 255.255.255.0");
    EXPECT_EQ(Problem(kNetmask, {"0"}),
              "'0' is not a mask: it has no ones; give an IPv4 mask such as 255.255.255.0");
    for (const std::string word : {"24/", "//24", "+24", "24 ", "/none"}) {
        EXPECT_EQ(Problem(kNetmask, {word}),
                  "'" + word + "' is not an IPv4 mask; give an IPv4 mask such as 255.255.255.0");
    }
}

TEST(AddressKindParse, TakesAPrefixLengthAsAMask) {
    EXPECT_EQ(kNetmask.Parse(Words{"24"}).data, DataOf("255.255.255.0"));
    EXPECT_EQ(kNetmask.Parse(Words{"/24"}).data, DataOf("255.255.255.0"));
    EXPECT_EQ(kNetmask.Parse(Words{"1"}).data, DataOf("128.0.0.0"));
    EXPECT_EQ(kNetmask.Parse(Words{"/32"}).data, DataOf("255.255.255.255"));
    EXPECT_EQ(kNetmask.Parse(Words{"/255.255.0.0"}).data, DataOf("255.255.0.0"));
    EXPECT_FALSE(kAddress.Parse(Words{"10.0.0.1/24"}).ok()) << "one setting is one address";
    EXPECT_FALSE(kGateway.Parse(Words{"24"}).ok());
}

TEST(AddressKindMeanings, AreTheShortForms) {
    ASSERT_EQ(kNetmask.Meanings().size(), 1U);
    EXPECT_EQ(kNetmask.Meanings()[0].value, "24");
    EXPECT_EQ(kAddress.Meanings()[0].value, "192.168.0.10/24");
    EXPECT_TRUE(kGateway.Meanings().empty());
}

TEST(AddressKindParse, TakesExactlyOneWord) {
    EXPECT_EQ(Problem(kAddress, {}), "no value given; give an IPv4 address such as 192.168.0.10");
    EXPECT_EQ(Problem(kAddress, {"10.0.0.1", "255.0.0.0"}),
              "2 values given; give an IPv4 address such as 192.168.0.10");
}

TEST(AddressKindPrint, ShowsTheValueOfTheDevice) {
    EXPECT_EQ(kAddress.Print(DataOf("192.168.0.10")), "192.168.0.10");
    EXPECT_EQ(kGateway.Print(Data{}), "none");
    EXPECT_EQ(kAddress.Print(DataOf("not one \x1b[31m")), "not one \\x1b[31m");
    Data full;
    full.fill('x');
    EXPECT_EQ(kAddress.Print(full), std::string(512, 'x'));
}

}  // namespace
