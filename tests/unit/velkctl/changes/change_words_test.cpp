// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The changes that the words of "velkctl set" ask for.
#include "velkctl/changes/change_words.h"

#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/words.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Words;
using velkctl::Forcing;
using velkctl::RequestedChanges;

RequestedChanges Read(const Words& words, Forcing forcing = Forcing::kPossible) {
    return velkctl::ReadChanges("set", words, forcing);
}

// "eth0.address 10.0.0.1" for each change.
Words Changes(const Words& words, Forcing forcing = Forcing::kPossible) {
    const RequestedChanges read = Read(words, forcing);
    EXPECT_THAT(read.problems, IsEmpty()) << OneLine(read.problems.front());
    Words changes;
    for (const auto& [setting, value] : read.changes) {
        changes.push_back(setting.name() + " " + setting.row->kind->Print(value));
    }
    return changes;
}

Words Problems(const Words& words) {
    Words problems;
    for (const velkctl::Problem& problem : Read(words).problems) {
        problems.push_back(OneLine(problem));
    }
    return problems;
}

TEST(ChangeWords, AreANameAndTheWordsOfItsValue) {
    EXPECT_THAT(Changes({"eth0.dns", "1.1.1.1", "2.2.2.2"}),
                ElementsAre("eth0.dns 1.1.1.1 2.2.2.2"));
    EXPECT_THAT(Changes({"location", "a=b"}), ElementsAre("location a=b"));
}

TEST(ChangeWords, AreNamesWithTheirValues) {
    EXPECT_THAT(Changes({"eth0.address=10.0.0.1", "location=a=b", "administrator="}),
                ElementsAre("eth0.address 10.0.0.1", "location a=b", "administrator ''"));
    EXPECT_THAT(Changes({"web-update=weekly sunday 08:30", "eth0.dns=1.1.1.1,2.2.2.2"}),
                ElementsAre("web-update weekly sunday 08:30", "eth0.dns 1.1.1.1 2.2.2.2"));
}

TEST(ChangeWords, ChangeTheNetmaskAfterAnAddress) {
    const std::string mask = "eth0.netmask 255.255.255.0";
    EXPECT_THAT(Changes({"eth0.address", "10.0.0.1/24"}),
                ElementsAre("eth0.address 10.0.0.1", mask));
    EXPECT_THAT(Changes({"eth0.address=10.0.0.1/255.255.255.0"}),
                ElementsAre("eth0.address 10.0.0.1", mask));
    EXPECT_THAT(Changes({"eth0.netmask=24"}), ElementsAre(mask));
    EXPECT_THAT(
        Problems({"eth0.address", "10.0.0.1/33"}),
        ElementsAre("eth0.netmask: '/33' is no mask: a prefix length is 1 to 32; give an IPv4 "
                    "mask such as 255.255.255.0"));
    EXPECT_THAT(Problems({"eth0.netmask=24", "eth0.address=10.0.0.1/24"}),
                ElementsAre("eth0.netmask: given twice; the prefix length after an address counts "
                            "too; give it once"));
}

TEST(ChangeWords, HaveAllTheirProblemsReported) {
    EXPECT_THAT(
        Problems({"eth0.address=300.1.1.1", "eth0.dsn=1.1.1.1", "8.8.8.8", "ntp=on", "ntp=off",
                  "eth0.mac-address=1", "eth0.method=bootp"}),
        ElementsAre(
            "eth0.address: '300.1.1.1' is not an IPv4 address; give an IPv4 address such "
            "as 192.168.0.10",
            "set: unknown setting 'eth0.dsn'; did you mean eth0.dns?",
            "set: '8.8.8.8' has no '='; give NAME=VALUE, with quotes around a value that "
            "has blanks",
            "ntp: given twice; give it once",
            "eth0.mac-address: cannot be set, only read; 'velkctl get eth0.mac-address' reads it",
            "eth0.method: 'bootp' is not valid; give static or dhcp"));
}

TEST(ChangeWords, AreOneSettingUnlessEachHasItsValue) {
    const std::string problem =
        "eth0.address: another setting follows the value; give NAME=VALUE for each of several "
        "settings";
    EXPECT_THAT(Problems({"eth0.address", "10.0.0.1", "eth0.netmask", "24"}), ElementsAre(problem));
    EXPECT_THAT(Problems({"eth0.address", "10.0.0.1", "eth0.netmask=24"}), ElementsAre(problem));
    EXPECT_THAT(Changes({"location", "ntp"}), ElementsAre("location ntp"));
    EXPECT_THAT(Changes({"location", "ntp=on"}), ElementsAre("location ntp=on"));
}

TEST(ChangeWords, HaveAnEmptyValueIfItIsRefused) {
    const RequestedChanges read = Read({"eth0.address=300.1.1.1", "eth0.gateway=10.0.0.1"});
    ASSERT_EQ(read.changes.size(), 2U);
    EXPECT_EQ(read.changes[0].value, velkctl::Data{});
}

TEST(ChangeWords, AfterTheNameOfASecretAreNotRepeated) {
    const std::string hidden =
        "set: a word, not repeated here as it may be a key, has no '='; "
        "give NAME=VALUE, with quotes around a value that has blanks";
    EXPECT_THAT(Problems({"eth1.psk=hunter22", "hunter23"}), ElementsAre(hidden));
    EXPECT_THAT(Problems({"psk=hunter22", "hunt=er23"}),
                ElementsAre("set: unknown setting, not repeated here as it may be a key; 'velkctl "
                            "list' names them all"));
}

TEST(ChangeWords, AreForcedIfTheyFitTheForm) {
    EXPECT_THAT(Changes({"eth0.gateway=nonsense"}, Forcing::kGiven),
                ElementsAre("eth0.gateway nonsense"));
}

TEST(ChangeWords, AreNotOfferedForceByAVerbWithoutIt) {
    EXPECT_THAT(Problems({"location=none"}),
                ElementsAre("location: 'none' would be a text here; give '' to clear the setting, "
                            "or --force to set that text"));
    EXPECT_EQ(OneLine(Read({"location=none"}, Forcing::kImpossible).problems.front()),
              "location: 'none' would be a text here; give '' to clear the setting");
}

class ChangeWordsOnDevice : public testkit::DeviceTest {
  protected:
    static void AskForSecretsWithoutInput(RequestedChanges& read) {
        const int saved = dup(STDIN_FILENO);
        const int empty = open("/dev/null", O_RDONLY | O_CLOEXEC);
        EXPECT_EQ(dup2(empty, STDIN_FILENO), STDIN_FILENO);
        AskForSecrets(read, Forcing::kPossible);
        EXPECT_EQ(dup2(saved, STDIN_FILENO), STDIN_FILENO);
        close(empty);
        close(saved);
    }
};

TEST_F(ChangeWordsOnDevice, NameTheFileOfASecret) {
    testkit::WriteFile("/tmp/key", "hunter22\n");
    const RequestedChanges read = Read({"ssid=lab", "psk=@/tmp/key"});
    ASSERT_EQ(read.changes.size(), 2U);
    EXPECT_STREQ(read.changes[1].value.data(), "hunter22");
}

TEST_F(ChangeWordsOnDevice, LeaveASecretOpenThatAPersonGives) {
    RequestedChanges read = Read({"psk=", "wep-key-1=-", "ntp=on"});
    EXPECT_EQ(read.changes.size(), 2U);
    ASSERT_EQ(read.unread_secrets.size(), 1U);
    AskForSecretsWithoutInput(read);
    EXPECT_THAT(read.unread_secrets, IsEmpty());
    ASSERT_EQ(read.problems.size(), 2U);
    EXPECT_EQ(OneLine(read.problems[0]),
              "eth1.psk: no value given; give a text of 1 to 64 bytes, or none");
    EXPECT_EQ(OneLine(read.problems[1]),
              "eth1.wep-key-1: standard input is empty; give the value as one line");
}

}  // namespace
