// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Whether a program has a socket bound at a path.
#include "velkctl/files/unix_socket.h"

#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"

namespace {

using velkctl::IsBound;

constexpr char kPath[] = "/tmp/velk-socket";

class IsBoundTest : public testkit::DeviceTest {
  protected:
    static int Bind(int type) {
        const int fd = socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        memcpy(address.sun_path, kPath, sizeof(kPath));
        EXPECT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        return fd;
    }
};

TEST_F(IsBoundTest, ASocketIsBoundWhileItsProgramHasItOpen) {
    {
        const velk::UniqueFd socket(Bind(SOCK_DGRAM));
        EXPECT_TRUE(IsBound(kPath));
    }
    EXPECT_TRUE(testkit::Exists(kPath));
    EXPECT_FALSE(IsBound(kPath));
}

TEST_F(IsBoundTest, ASocketOfAnotherTypeIsBoundToo) {
    const velk::UniqueFd socket(Bind(SOCK_STREAM));
    EXPECT_TRUE(IsBound(kPath));
}

TEST_F(IsBoundTest, AMissingOrOrdinaryFileIsNotBound) {
    EXPECT_FALSE(IsBound(kPath));
    testkit::WriteFile(kPath, "");
    EXPECT_FALSE(IsBound(kPath));
}

TEST_F(IsBoundTest, AFileInThePlaceOfABoundSocketIsNotBound) {
    const velk::UniqueFd socket(Bind(SOCK_DGRAM));
    ASSERT_EQ(unlink(kPath), 0);
    testkit::WriteFile(kPath, "");
    EXPECT_FALSE(IsBound(kPath));
}

}  // namespace
