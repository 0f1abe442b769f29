// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The mounts of a process.
#include "velkctl/preview/mount_points.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::MountPointIn;

TEST(MountPoints, AreTheFifthWordOfALine) {
    EXPECT_EQ(MountPointIn("26 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw"), "/");
    EXPECT_EQ(MountPointIn("27 26 8:1 /a /usr/local/share/etc/snmp/snmpd.conf rw - ext4 x rw"),
              "/usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(MountPointIn("27 26 8:1 /a"), "");
    EXPECT_EQ(MountPointIn(""), "");
}

TEST(MountPoints, HaveTheCharactersThatTheKernelEscapes) {
    EXPECT_EQ(MountPointIn(R"(27 26 8:1 / /mnt/a\040b\134c\011 rw)"), "/mnt/a b\\c\t");
    EXPECT_EQ(MountPointIn(R"(27 26 8:1 / /mnt/a\04 rw)"), R"(/mnt/a\04)");
    EXPECT_EQ(MountPointIn(R"(27 26 8:1 / /mnt/a\948 rw)"), R"(/mnt/a\948)");
}

TEST(MountPoints, AreFoundInTheTableOfTheKernel) {
    const std::vector<std::string> points = velkctl::MountPoints();
    EXPECT_NE(std::find(points.begin(), points.end(), "/var/tmp"), points.end());
    EXPECT_EQ(std::find(points.begin(), points.end(), ""), points.end());
}

}  // namespace
