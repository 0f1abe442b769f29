// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Devices in tar archives, among them unsafe ones.
#include "sandbox/device/device_image.h"

#include <fstream>
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "sandbox/process/failure.h"
#include "velkctl/capture/archive.h"

namespace {

using sandbox::DeviceImage;
using sandbox::FileKind;
using velkctl::Archive;

constexpr char kFile[] = "/tmp/image.tar";

DeviceImage ImageOf(const std::string& bytes) {
    std::ofstream(kFile, std::ios::binary) << bytes;
    return sandbox::ReadDeviceImage(kFile);
}

std::string FailureOf(const std::string& bytes) {
    try {
        (void)ImageOf(bytes);
    } catch (const sandbox::Failure& failure) {
        return failure.what();
    }
    return "none";
}

std::string BytesOf(const std::function<void(Archive&)>& fill) {
    Archive archive;
    fill(archive);
    return archive.Bytes();
}

std::string FileNamed(const std::string& name) {
    return BytesOf([&](Archive& archive) { archive.AddFile(name, {}, "text"); });
}

std::string LinkTo(const std::string& target) {
    return BytesOf([&](Archive& archive) { archive.AddLink("var/tmp/x", {}, target); });
}

// Changes one byte of the first header, and its checksum with it.
std::string WithType(std::string bytes, char type) {
    bytes[156] = type;
    bytes.replace(148, 8, 8, ' ');
    unsigned sum = 0;
    for (size_t i = 0; i < 512; ++i) {
        sum += static_cast<unsigned char>(bytes[i]);
    }
    char digits[8];
    (void)snprintf(digits, sizeof(digits), "%06o", sum);
    return bytes.replace(148, 7, digits, 7);
}

TEST(DeviceImage, TakesTheDevicesFilesOfAPlainArchive) {
    const DeviceImage image = ImageOf(BytesOf([](Archive& archive) {
        archive.AddFolder("./etc/network", {.mode = 0755});
        archive.AddFile("./etc/network/interfaces", {.mode = 0640}, "auto lo\n");
        archive.AddFile("./bin/sh", {}, "another machine's");
        archive.AddFile("run/velk-sandbox/bin/sudo", {}, "unsafe");
    }));
    ASSERT_EQ(image.files.size(), 2U);
    EXPECT_EQ(image.files[0].kind, FileKind::kFolder);
    EXPECT_EQ(image.files[1].path, "/etc/network/interfaces");
    EXPECT_EQ(image.files[1].mode, 0640U);
    EXPECT_EQ(image.files[1].text, "auto lo\n");
    EXPECT_FALSE(image.state.has_value());
}

TEST(DeviceImage, TakesFilesAndRecordingsOfACapture) {
    const DeviceImage image = ImageOf(BytesOf([](Archive& archive) {
        archive.AddFile("capture.json", {}, "{}");
        archive.AddFile("root/etc/dhclient.conf", {}, "x");
        archive.AddFile("etc/dhclient-exit-hooks", {}, "outside root/");
        archive.AddFile("recordings/wireless.bin", {}, "w");
        archive.AddFile("recordings/device.txt", {}, "daemon silent\n");
    }));
    ASSERT_EQ(image.files.size(), 1U);
    EXPECT_EQ(image.files[0].path, "/etc/dhclient.conf");
    EXPECT_EQ(image.wireless_record, "w");
    EXPECT_EQ(image.state->daemon, sandbox::RecordedDaemon::kSilent);
}

TEST(DeviceImage, RefusesPathsOutsideTheRoot) {
    EXPECT_EQ(FailureOf(FileNamed("../etc/dhclient.conf")),
              "/tmp/image.tar: '../etc/dhclient.conf' is outside the root folder");
    EXPECT_EQ(FailureOf(FileNamed("tmp/../../x")),
              "/tmp/image.tar: 'tmp/../../x' is outside the root folder");
    EXPECT_EQ(FailureOf(FileNamed("/etc/dhclient.conf")),
              "/tmp/image.tar: '/etc/dhclient.conf' is outside the root folder");
}

TEST(DeviceImage, RefusesDeviceNodesAndHardLinks) {
    for (const char type : {'1', '3', '4'}) {
        EXPECT_EQ(FailureOf(WithType(FileNamed("tmp/x"), type)),
                  "/tmp/image.tar: /tmp/x is no file, folder, link or FIFO");
    }
}

TEST(DeviceImage, RefusesLinksToFilesOfTheMachine) {
    for (const char* target : {"/etc/passwd", "../../etc/passwd", "../../../../../etc/passwd", "/",
                               "a/../b", "/tmp/../etc/passwd"}) {
        EXPECT_EQ(FailureOf(LinkTo(target)),
                  "/tmp/image.tar: /var/tmp/x is a link to a file of this machine")
            << target;
    }
    for (const char* target : {"/nowhere", "y", "../../tmp/y", "/run/resolv.conf"}) {
        EXPECT_EQ(ImageOf(LinkTo(target)).files[0].text, target);
    }
}

TEST(DeviceImage, RefusesFilesBelowLinks) {
    EXPECT_EQ(FailureOf(BytesOf([](Archive& archive) {
                  archive.AddFile("tmp/x/y", {}, "");
                  archive.AddLink("tmp/x", {}, "/tmp/z");
              })),
              "/tmp/image.tar: /tmp/x/y is below a member that is no folder");
}

TEST(DeviceImage, RefusesOtherFilesAndDamage) {
    const std::string good = FileNamed("tmp/x");
    EXPECT_EQ(FailureOf(""), "/tmp/image.tar is no tar archive");
    EXPECT_EQ(FailureOf("root:x:0:0"), "/tmp/image.tar is no tar archive");
    EXPECT_EQ(FailureOf(std::string(2048, 'x')), "/tmp/image.tar is no tar archive");
    EXPECT_EQ(FailureOf(good.substr(0, 514)), "/tmp/image.tar is cut");
    EXPECT_EQ(FailureOf(good.substr(0, 1024) + std::string(100, 'x')), "/tmp/image.tar is cut");
    EXPECT_EQ(FailureOf(good.substr(0, 1024) + std::string(512, 'x')), "/tmp/image.tar is damaged");
    EXPECT_EQ(FailureOf(FileNamed("bin/sh")), "/tmp/image.tar has no file of the device");
    EXPECT_EQ(FailureOf(WithType(good, 'L')),
              "/tmp/image.tar has names that are too long for the format ustar");
}

TEST(DeviceImage, LimitsSizeAndNumberOfFiles) {
    EXPECT_EQ(FailureOf(BytesOf([](Archive& archive) {
                  archive.AddFile("tmp/x", {}, std::string(1024 * 1024 + 1, 'x'));
              })),
              "/tmp/image.tar: 'tmp/x' is larger than 1 MiB");
    EXPECT_EQ(FailureOf(BytesOf([](Archive& archive) {
                  for (int i = 0; i < 1001; ++i) {
                      archive.AddFile("tmp/" + std::to_string(i), {}, "");
                  }
              })),
              "/tmp/image.tar has more than 1000 files of the device");
}

}  // namespace
