// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Hosts with too few descriptors, or too many.
#include <string_view>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include "fault/kit/host.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kLockFile;
using testkit::kReplySocket;
using testkit::kSemaphoreFile;

TEST_F(HostTest, AHostWithoutStandardDescriptorsCanSet) {
    EXPECT_TRUE(InAHost([] {
        for (const int fd : {0, 1, 2}) {
            close(fd);
        }
        return AddressCanBeSet("10.1.2.3");
    }));
}

TEST_F(HostTest, AHostWithOneStandardDescriptorMissingCanSet) {
    for (const int fd : {0, 1, 2}) {
        EXPECT_TRUE(InAHost([fd] {
            close(fd);
            return AddressCanBeSet("10.1.2.3") && fcntl(fd, F_GETFD) == -1;
        })) << fd;
    }
}

// For this host 0 is an ordinary descriptor.
TEST_F(HostTest, AHostWithoutStandardDescriptorsCanAskTheDaemon) {
    EXPECT_TRUE(InAHost([] {
        for (const int fd : {0, 1, 2}) {
            close(fd);
        }
        _velk_request own{};
        return QuerySsid(own) == 0 && std::string_view(own.data) == "home";
    }));
    for (const int fd : {0, 1, 2}) {
        EXPECT_TRUE(InAHost([fd] {
            close(fd);
            _velk_request own{};
            return QuerySsid(own) == 0 && std::string_view(own.data) == "home" &&
                   fcntl(fd, F_GETFD) == -1;
        })) << fd;
    }
}

// The library does not take descriptor 0 as a lock. If it has to make the lock's file first, it
// does not try again; the file exists then.
TEST_F(HostTest, AHostWithoutStandardInputFailsOnceIfTheLockFileIsMissing) {
    unlink(kLockFile);
    EXPECT_TRUE(InAHost([] {
        close(0);
        _velk_request own{};
        return RequestAddress(VELK_SET, "10.1.2.3", own) == -1 && AddressCanBeSet("10.1.2.3");
    }));
}

// Returns false if the system does not allow that many.
bool LimitDescriptors(int count) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == -1) {
        return false;
    }
    limit.rlim_cur = static_cast<rlim_t>(count);
    return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

// Opens all descriptors below `count`. Returns false if the system does not allow that many.
bool OpenDescriptorsBelow(int count) {
    if (!LimitDescriptors(count + 100)) {
        return false;
    }
    int fd = 0;
    while (fd < count - 1) {
        fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (fd == -1) {
            return false;
        }
    }
    return true;
}

TEST_F(HostTest, AHostWithManyDescriptorsCanSet) {
    EXPECT_TRUE(InAHost([] { return OpenDescriptorsBelow(2000) && AddressCanBeSet("10.1.2.3"); }));
}

// select(2) takes no descriptor above 1023; nothing is written after the end of its set.
TEST_F(HostTest, AHostWithManyDescriptorsCannotAskTheDaemon) {
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return QuerySsid(own) == 0 && OpenDescriptorsBelow(2000) && QuerySsid(own) == -1;
    }));
    EXPECT_FALSE(testkit::Exists(kReplySocket));
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
}

TEST_F(HostTest, ARequestWithoutAFreeDescriptorFails) {
    const Files before = ReadTargets();
    EXPECT_TRUE(InAHost([] {
        const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
        _velk_request own{};
        return next > 0 && LimitDescriptors(next + 1) &&
               RequestAddress(VELK_SET, "10.1.2.3", own) == -1 &&
               RequestAddress(VELK_GET, "", own) == -1;
    }));
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_TRUE(RemainingFiles().empty());
}

}  // namespace
}  // namespace fault
