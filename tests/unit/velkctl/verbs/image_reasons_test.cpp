// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/verbs/image_reasons.h"

#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::FileImage;
using velkctl::FindSetting;

constexpr char kInterfaces[] = "/etc/network/interfaces";
constexpr char kStanzas[] =
    "iface eth1 inet static\n\tgateway 10.0.0.1\n"
    "iface eth0 inet static\n\taddress 192.168.0.10\n#\tnetmask 255.255.255.0\n"
    "iface lo inet loopback\n\tgateway 10.0.0.1\n";

std::string ReasonFor(const std::string& name, const FileImage& image) {
    return ReasonInImage(*FindSetting(name), {image});
}

FileImage ImageOf(const std::string& path, const std::string& text) {
    FileImage image{path};
    image.exists = true;
    image.bytes = text;
    return image;
}

TEST(ImageReasons, NameAMissingFile) {
    EXPECT_EQ(ReasonFor("eth0.address", FileImage{kInterfaces}),
              "/etc/network/interfaces is missing in the image");
}

TEST(ImageReasons, NameAFileThatCannotBeRead) {
    FileImage image = ImageOf(kInterfaces, "");
    image.error = EISDIR;
    EXPECT_EQ(ReasonFor("eth0.address", image),
              "/etc/network/interfaces of the image cannot be read: Is a directory");
}

TEST(ImageReasons, NameAMissingStanza) {
    const std::string reason = "/etc/network/interfaces of the image has no stanza of eth0";
    EXPECT_EQ(ReasonFor("eth0.address", ImageOf(kInterfaces, "")), reason);
    EXPECT_EQ(ReasonFor("eth0.address", ImageOf(kInterfaces, "# iface eth0 inet static\n")),
              reason);
    EXPECT_EQ(ReasonFor("eth0.method", ImageOf(kInterfaces, "iface eth0 inet6 static\n")), reason);
}

TEST(ImageReasons, NameALineThatTheStanzaLacks) {
    const FileImage image = ImageOf(kInterfaces, kStanzas);
    EXPECT_EQ(ReasonFor("eth0.address", image), "");
    EXPECT_EQ(ReasonFor("eth0.method", image), "");
    EXPECT_EQ(ReasonFor("eth0.netmask", image),
              "/etc/network/interfaces of the image has no line with netmask");
    EXPECT_EQ(ReasonFor("eth0.gateway", image),
              "/etc/network/interfaces of the image has no line with gateway");
    EXPECT_EQ(ReasonFor("eth1.gateway", image), "");
}

TEST(ImageReasons, NameTheSecondFileOfASetting) {
    const FileImage interfaces = ImageOf(kInterfaces, kStanzas);
    const FileImage config{"/etc/dhclient.conf"};
    EXPECT_EQ(ReasonInImage(*FindSetting("eth0.method"), {interfaces, config}),
              "/etc/dhclient.conf is missing in the image");
}

TEST(ImageReasons, AreEmptyForASettingWithoutAFile) {
    EXPECT_EQ(ReasonFor("eth1.ssid", FileImage{kInterfaces}), "");
}

}  // namespace
