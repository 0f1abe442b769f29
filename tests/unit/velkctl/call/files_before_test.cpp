// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The files that lost their text in a set.
#include "velkctl/call/files_before.h"

#include <string>
#include <string_view>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace {

using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::WriteFile;
using velkctl::FilesBefore;
using velkctl::FindSetting;

constexpr auto& kDhcpConfig = testkit::kDhcpConfigFile;

class FilesBeforeTest : public testkit::DeviceTest {
  protected:
    static FilesBefore Before() { return FilesBefore(*FindSetting("eth0.method")); }
    // Returns the losses of this change of the file.
    static std::string Losses(std::string_view before, std::string_view after) {
        WriteFile(kInterfacesFile, before);
        const FilesBefore files = Before();
        WriteFile(kInterfacesFile, after);
        return files.Losses();
    }
};

TEST_F(FilesBeforeTest, AnEditLosesNothing) {
    EXPECT_EQ(Losses("a\nb\n", "a\nb\n"), "");
    EXPECT_EQ(Losses("a\nb\n", "a\n"), "") << "a line may be removed";
    EXPECT_EQ(Losses("a\nb", "a\nb"), "");
    EXPECT_EQ(Losses("a\nb", "a\nb\n"), "");
    EXPECT_EQ(Losses("", ""), "");
    EXPECT_EQ(Losses("", "a"), "");
}

TEST_F(FilesBeforeTest, NamesAFileThatIsEmptyOrCut) {
    EXPECT_EQ(Losses("a\nb\n", ""),
              "/etc/network/interfaces is empty since this set, and no edit copy has the rest: "
              "restore it before the device restarts");
    EXPECT_EQ(Losses("a\nb\n", "a\nx"),
              "/etc/network/interfaces was cut by this set, and no edit copy has the rest: restore "
              "it before the device restarts");
}

TEST_F(FilesBeforeTest, NamesTheEditCopyThatHasTheRest) {
    WriteFile(kInterfacesCopy, "a\nc\n");
    ASSERT_EQ(chmod(kInterfacesCopy, 0600), 0);
    EXPECT_EQ(Losses("a\nb\n", ""),
              "/etc/network/interfaces is empty since this set, and the rest is in its edit copy "
              "/var/tmp/interfaces, see 'velkctl doctor'");
    ASSERT_EQ(chmod(kInterfacesCopy, 0640), 0);
    EXPECT_EQ(Losses("a\nb\n", ""),
              "/etc/network/interfaces is empty since this set, and no edit copy has the rest: "
              "restore it before the device restarts")
        << "it is not the library's";
}

// A host with different real and effective users makes its copies with mode 644.
TEST_F(FilesBeforeTest, NamesACopyThatMayHaveTheRest) {
    WriteFile(kInterfacesCopy, "a\nc\n");
    ASSERT_EQ(chmod(kInterfacesCopy, 0644), 0);
    EXPECT_EQ(Losses("a\nb\n", ""),
              "/etc/network/interfaces is empty since this set, and /var/tmp/interfaces may be the "
              "only complete text; look at it before you remove it, see 'velkctl doctor'");
}

TEST_F(FilesBeforeTest, NamesEveryFileOfTheSetting) {
    WriteFile(kInterfacesFile, "a\n");
    WriteFile(kDhcpConfig, "b\n");
    WriteFile("/var/cron/tabs/root", "c\n");
    const FilesBefore files = Before();
    WriteFile(kInterfacesFile, "");
    WriteFile(kDhcpConfig, "");
    WriteFile("/var/cron/tabs/root", "");
    EXPECT_EQ(files.Losses(),
              "/etc/network/interfaces is empty since this set, and no edit copy has the rest: "
              "restore it before the device restarts; /etc/dhclient.conf is empty since this "
              "set, and no edit copy has the rest: restore it before the device restarts");
}

TEST_F(FilesBeforeTest, NamesNoFileThatCannotBeRead) {
    EXPECT_EQ(Before().Losses(), "");
    WriteFile(kInterfacesFile, "a\n");
    const FilesBefore files = Before();
    ASSERT_EQ(unlink(kInterfacesFile), 0);
    ASSERT_EQ(mkfifo(kInterfacesFile, 0600), 0);
    EXPECT_EQ(files.Losses(), "");
}

}  // namespace
