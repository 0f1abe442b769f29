// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The files that an interrupted change would have made.
#include "velkctl/journal/expected_images.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/data_of.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/journal/put_back.h"

namespace {

using testkit::DataOf;
using testkit::WriteFile;
using velkctl::CompareFile;
using velkctl::Data;
using velkctl::ExpectSteps;
using velkctl::FileCase;
using velkctl::FindSetting;
using velkctl::JournalLock;
using velkctl::OpenChange;
using velkctl::ReadFileImage;
using velkctl::SettingChange;

constexpr auto& kInterfaces = testkit::kInterfacesFile;
constexpr char kText[] = "iface eth0 inet static\n\taddress 192.168.0.1\n\tgateway 192.168.0.8\n";
constexpr char kAfterOne[] =
    "iface eth0 inet static\n\taddress 192.168.0.2\n\tgateway 192.168.0.8\n";
constexpr char kAfterAll[] =
    "iface eth0 inet static\n\taddress 192.168.0.2\n\tgateway 192.168.0.9\n";

// An interrupted change of address and gateway, with no image after a step.
class ExpectedImages : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfaces, kText);
        ASSERT_TRUE(JournalLock(JournalLock::Use::kAlone, 0).is_held()) << "makes the folder";
        const std::vector<SettingChange> changes{
            {*FindSetting("eth0.address"), DataOf("192.168.0.2")},
            {*FindSetting("eth0.gateway"), DataOf("192.168.0.9")}};
        ASSERT_EQ(change.Begin({.steps = JournalSteps(changes)}, device), 0);
    }
    void TearDown() override {
        change = OpenChange();
        testkit::DeviceTest::TearDown();
    }
    FileCase CaseOf(std::string_view text) {
        WriteFile(kInterfaces, text);
        return CompareFile(ReadFileImage(kInterfaces), change.entry());
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
    OpenChange change;
};

TEST_F(ExpectedImages, AreFoundForEachStep) {
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kOther);
    EXPECT_FALSE(ExpectSteps(change));
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kNew);
    EXPECT_EQ(CaseOf(kAfterOne), FileCase::kNew);
    EXPECT_EQ(CaseOf(std::string_view(kAfterAll).substr(0, 50)), FileCase::kCut);
    EXPECT_EQ(CaseOf("# by hand\n"), FileCase::kOther);
    EXPECT_EQ(CaseOf(std::string(kAfterAll) + "# by hand\n"), FileCase::kOther);
    const std::string only_gateway =
        "iface eth0 inet static\n\taddress 192.168.0.1\n\tgateway 192.168.0.9\n";
    EXPECT_EQ(CaseOf(only_gateway), FileCase::kNew) << "each line is as before or as after";
}

TEST_F(ExpectedImages, AreNotSearchedIfEachFileIsKnown) {
    EXPECT_EQ(CaseOf(kText), FileCase::kOld);
    EXPECT_FALSE(ExpectSteps(change));
    EXPECT_TRUE(change.entry().after.empty());
}

// Another program has written between a step and the record of its file.
TEST_F(ExpectedImages, ReplaceARecordedTextOfAnotherProgram) {
    const std::string theirs = std::string(kAfterAll) + "# by hand\n";
    WriteFile(kInterfaces, theirs);
    ASSERT_EQ(change.RecordFiles(), 0);
    EXPECT_EQ(CaseOf(theirs), FileCase::kNew);
    const velkctl::JournalEntry own = WithOwnImages(change.entry());
    EXPECT_EQ(CompareFile(ReadFileImage(kInterfaces), own), FileCase::kOther);
    EXPECT_FALSE(ExpectSteps(change));
    EXPECT_EQ(CaseOf(theirs), FileCase::kOther);
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kNew);
}

TEST_F(ExpectedImages, AreThoseOfTheRecordIfNoTrialIsPossible) {
    WriteFile(kInterfaces, kAfterAll);
    ASSERT_EQ(change.RecordFiles(), 0);
    WriteFile(testkit::kResolverFile, std::string(2 << 20, 'x'));
    EXPECT_FALSE(ExpectSteps(change)) << "each file is known";
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kNew);
    EXPECT_EQ(WithOwnImages(change.entry()).after.size(), 1U);
}

TEST_F(ExpectedImages, AreThoseOfTheRecordForAnUndo) {
    velkctl::JournalEntry entry = change.entry();
    entry.kind = velkctl::EntryKind::kUndo;
    entry.after = {ReadFileImage(kInterfaces)};
    WriteFile(kInterfaces, "# by hand\n");
    EXPECT_EQ(WithOwnImages(entry).after.size(), 1U);
    EXPECT_EQ(WithOwnImages(entry).after[0].bytes, kText);
}

// A trial run starts no DHCP client, which writes the servers of its lease.
TEST_F(ExpectedImages, KeepTheRecordedServersOfALease) {
    const std::string before = "nameserver 192.168.0.1\n";
    const std::string leased = "nameserver 10.0.0.53\n";
    WriteFile(testkit::kResolverFile, before);
    OpenChange apply;
    const std::vector<SettingChange> changes{
        {*FindSetting("eth0.method"), velkctl::Data{VELK_METHOD_DHCP}}};
    ASSERT_EQ(apply.Begin({.kind = velkctl::EntryKind::kApply,
                           .steps = JournalSteps(changes),
                           .restarts = {"eth0"}},
                          device),
              0);
    WriteFile(testkit::kResolverFile, leased);
    ASSERT_EQ(apply.RecordFiles(), 0);
    EXPECT_FALSE(ExpectSteps(apply));
    const FileCase found = CompareFile(ReadFileImage(testkit::kResolverFile), apply.entry());
    EXPECT_EQ(found, FileCase::kNew);
}

// A set of the method switches an option of DHCP, and the apply sets it again.
TEST_F(ExpectedImages, HaveASwitchedValueAsItWas) {
    const std::string block = "interface \"eth0\" {\n\trequest routers, domain-name-servers;\n}\n";
    WriteFile(kInterfaces, "iface eth0 inet static\n");
    WriteFile(testkit::kDhcpConfigFile, block);
    const velkctl::Data on{VELK_ON};
    OpenChange apply;
    ASSERT_EQ(apply.Begin({.kind = velkctl::EntryKind::kApply,
                           .steps = {{*FindSetting("eth0.method"), velkctl::Data{VELK_METHOD_DHCP}},
                                     {*FindSetting("eth0.dhcp-dns"), on}}},
                          device),
              0);
    EXPECT_FALSE(ExpectChange(apply, {}));
    for (const velkctl::FileImage& image : apply.entry().after) {
        if (image.path == testkit::kDhcpConfigFile) {
            EXPECT_EQ(image.bytes, block);
        }
    }
}

TEST_F(ExpectedImages, AreUnknownIfNoTrialIsPossible) {
    WriteFile(testkit::kResolverFile, std::string(2 << 20, 'x'));
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kOther);
    const std::optional<velkctl::Problem> problem = ExpectSteps(change);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->message, "/etc/resolv.dnsmasq.conf: is too large for a private copy");
    EXPECT_EQ(CaseOf(kAfterAll), FileCase::kOther);
}

}  // namespace
