// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Doubts about wireless keys: clearing the one in use, and a length that WPA does not take.
#include <string>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "velkctl/doctor/set_checks.h"

namespace {

using testkit::DataOf;
using velkctl::FindSetting;

class ClearedKeyTest : public testkit::DeviceTest {
  protected:
    void Configure(uint16_t encryption, uint16_t wep_default) {
        SMsgConf conf = daemon_.conf();
        conf.encryption = encryption;
        conf.wep_default = wep_default;
        daemon_.SetConf(conf);
    }
    static std::string Problem(const std::string& name, const std::string& value) {
        velkctl::Report report(velkctl::Report::Form::kText);
        const velkctl::Device device({}, report);
        const velkctl::SettingChange change{*FindSetting(name), DataOf(value)};
        const auto problem = ClearedKeyProblem(change, {device, {&change, 1}});
        return problem ? OneLine(*problem) : "";
    }
    void TearDown() override {
        daemon_.Stop();  // closes its socket
        testkit::DeviceTest::TearDown();
    }
    testkit::FakeDaemon daemon_;
};

TEST_F(ClearedKeyTest, TheWepKeyInUseCannotBeCleared) {
    Configure(1, 2);
    EXPECT_EQ(Problem("eth1.wep-key-2", ""),
              "eth1.wep-key-2: the key in use cannot be cleared; eth1.encryption is wep, and "
              "eth1.wep-default-key names it; fix: set eth1.wep-default-key or eth1.encryption "
              "first");
}

TEST_F(ClearedKeyTest, AnotherKeyCanBeCleared) {
    Configure(1, 2);
    EXPECT_EQ(Problem("eth1.wep-key-1", ""), "");
    EXPECT_EQ(Problem("eth1.wep-key-2", "abcde"), "") << "it is replaced";
    EXPECT_EQ(Problem("eth1.psk", ""), "");
    Configure(2, 2);
    EXPECT_EQ(Problem("eth1.wep-key-2", ""), "") << "the encryption is not WEP";
}

TEST_F(ClearedKeyTest, NothingIsKnownWithoutTheDaemon) {
    daemon_.Stop();
    EXPECT_EQ(Problem("eth1.wep-key-1", ""), "");
}

std::string Note(const std::string& name, const std::string& key) {
    const auto note = velkctl::UnusualKeyNote({*FindSetting(name), DataOf(key)});
    return note ? OneLine(*note) : "";
}

TEST(UnusualKeyNote, NamesALengthThatWpaDoesNotTake) {
    const std::string wanted = "; WPA takes a passphrase of 8 to 63 characters or 64 hex digits";
    EXPECT_EQ(Note("eth1.psk", "a"), "eth1.psk: the key has 1 byte" + wanted);
    EXPECT_EQ(Note("eth1.psk", "hunter2"), "eth1.psk: the key has 7 bytes" + wanted);
    EXPECT_EQ(Note("eth1.psk", std::string(64, 'g')), "eth1.psk: the key has 64 bytes" + wanted);
}

TEST(UnusualKeyNote, IsEmptyForUsualKeysAndOtherSettings) {
    for (const std::string& key :
         {std::string(), std::string(8, 'g'), std::string(63, 'g'), std::string(64, 'a')}) {
        EXPECT_EQ(Note("eth1.psk", key), "") << key.size();
    }
    EXPECT_EQ(Note("eth1.ssid", "short"), "");
}

}  // namespace
