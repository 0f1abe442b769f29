// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/files/image_root.h"

#include <filesystem>
#include <string>

#include "support/device_test.h"

namespace {

namespace fs = std::filesystem;

using velkctl::PathInRoot;

constexpr char kRoot[] = "/var/tmp/image";

class ImageRootTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        fs::create_directories(std::string(kRoot) + "/var/cron/tabs");
    }
    void TearDown() override {
        fs::remove_all(kRoot);
        testkit::DeviceTest::TearDown();
    }
    static void Link(const char* target, const std::string& path) {
        fs::create_symlink(target, kRoot + path);
    }
};

TEST_F(ImageRootTest, APathWithoutLinksIsBelowTheRoot) {
    EXPECT_EQ(PathInRoot(kRoot, "/var/cron/tabs/root"), "/var/tmp/image/var/cron/tabs/root");
    EXPECT_EQ(PathInRoot(kRoot, "//var/./cron/"), "/var/tmp/image/var/cron");
    EXPECT_EQ(PathInRoot(kRoot, "/"), kRoot);
}

TEST_F(ImageRootTest, ALinkStaysInTheImage) {
    Link("/etc/passwd", "/var/cron/tabs/root");
    EXPECT_EQ(PathInRoot(kRoot, "/var/cron/tabs/root"), "/var/tmp/image/etc/passwd");
    Link("../../../../../../etc/shadow", "/var/cron/tabs/other");
    EXPECT_EQ(PathInRoot(kRoot, "/var/cron/tabs/other"), "/var/tmp/image/etc/shadow");
    Link("real", "/var/cron/relative");
    EXPECT_EQ(PathInRoot(kRoot, "/var/cron/relative"), "/var/tmp/image/var/cron/real");
}

TEST_F(ImageRootTest, AFolderMayBeALink) {
    Link("/run", "/var/run");
    Link("cron/tabs", "/var/tabs");
    EXPECT_EQ(PathInRoot(kRoot, "/var/run/x"), "/var/tmp/image/run/x");
    EXPECT_EQ(PathInRoot(kRoot, "/var/tabs/root"), "/var/tmp/image/var/cron/tabs/root");
    EXPECT_EQ(PathInRoot(kRoot, "/var/tabs/../x"), "/var/tmp/image/var/cron/x");
}

TEST_F(ImageRootTest, ALoopOfLinksHasNoPath) {
    Link("other", "/var/one");
    Link("one", "/var/other");
    EXPECT_EQ(PathInRoot(kRoot, "/var/one"), "");
}

}  // namespace
