// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The settings that names, interfaces and patterns select.
#include "velkctl/verbs/selected_settings.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/words.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Words;

class SelectedSettings : public testing::Test {
  protected:
    Words Select(const Words& words, bool beside_secret = false) {
        velkctl::Invocation invocation;
        invocation.words = words;
        invocation.beside_secret = beside_secret;
        velkctl::Report report(velkctl::Report::Form::kText);
        testing::internal::CaptureStderr();
        Words names;
        for (const velkctl::Setting& setting : SelectReadable("get", invocation, report)) {
            names.push_back(setting.name());
        }
        error = testing::internal::GetCapturedStderr();
        return names;
    }

    std::string error;
};

TEST_F(SelectedSettings, AreThoseOfNamesInTheirOrder) {
    EXPECT_THAT(Select({"ntp", "eth0.dns", "ssid"}), ElementsAre("ntp", "eth0.dns", "eth1.ssid"));
    EXPECT_EQ(error, "");
}

TEST_F(SelectedSettings, AreThoseOfAnInterface) {
    EXPECT_THAT(Select({"eth0"}), ElementsAre("eth0.mac-address", "eth0.method", "eth0.apipa",
                                              "eth0.address", "eth0.netmask", "eth0.gateway",
                                              "eth0.dhcp-dns", "eth0.dns", "eth0.link-speed"));
    EXPECT_EQ(Select({"eth0.*"}), Select({"eth0"}));
}

TEST_F(SelectedSettings, AreThoseThatMatchAPattern) {
    EXPECT_THAT(Select({"eth*.dns"}), ElementsAre("eth0.dns", "eth1.dns"));
    EXPECT_THAT(Select({"eth1.wep-key-[12]"}), ElementsAre("eth1.wep-key-1", "eth1.wep-key-2"));
    EXPECT_THAT(Select({"nt?", "*.ssid"}), ElementsAre("ntp", "eth1.ssid"));
}

TEST_F(SelectedSettings, AreNoneIfAWordSelectsNone) {
    EXPECT_THAT(Select({"eth0.dns", "eth2.*", "eth0.dhcp-notice", "dns"}), IsEmpty());
    EXPECT_EQ(error,
              "velkctl: get: 'eth2.*' matches no setting that can be read\n"
              "  fix: 'velkctl list' names them all\n"
              "velkctl: eth0.dhcp-notice: cannot be read, only set\n"
              "  fix: 'velkctl set eth0.dhcp-notice VALUE' sets it\n"
              "velkctl: get: 'dns' is a setting of both interfaces; give eth0.dns or eth1.dns\n");
    EXPECT_THAT(Select({"eth0.dhcp-not*"}), IsEmpty());
}

TEST_F(SelectedSettings, AreNotNamedNextToASecret) {
    EXPECT_THAT(Select({"hunter*"}, /*beside_secret=*/true), IsEmpty());
    EXPECT_EQ(error.find("hunter"), std::string::npos) << error;
}

}  // namespace
