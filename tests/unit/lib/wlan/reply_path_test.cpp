// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wlan/reply_path.h"

#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "support/device_test.h"
#include "support/machine.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::kSomebody;
using velk::ReplyPathOwner;

class ReplyPathTest : public testkit::DeviceTest {};

TEST_F(ReplyPathTest, AFreePathHasNoOwner) {
    EXPECT_EQ(velk::OwnerOfReplyPath(), ReplyPathOwner::kNone);
    EXPECT_TRUE(velk::ClearReplyPath());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReplyPathTest, TheCallersOwnFileStays) {
    testkit::WriteFile(velk::kReplySocket, "");
    EXPECT_EQ(velk::OwnerOfReplyPath(), ReplyPathOwner::kCaller);
    EXPECT_TRUE(velk::ClearReplyPath());
    EXPECT_TRUE(testkit::Exists(velk::kReplySocket)) << "another query may wait at it";
}

TEST_F(ReplyPathTest, AnotherUsersFileIsRemoved) {
    testkit::WriteFile(velk::kReplySocket, "");
    if (chown(velk::kReplySocket, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(velk::OwnerOfReplyPath(), ReplyPathOwner::kOther);
    EXPECT_TRUE(velk::ClearReplyPath());
    EXPECT_FALSE(testkit::Exists(velk::kReplySocket));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReplyPathTest, AnotherUsersLinkIsRemovedAndNotFollowed) {
    testkit::WriteFile("/tmp/victim", "");
    ASSERT_EQ(symlink("/tmp/victim", velk::kReplySocket), 0);
    if (lchown(velk::kReplySocket, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_TRUE(velk::ClearReplyPath());
    EXPECT_FALSE(testkit::Exists(velk::kReplySocket));
    EXPECT_TRUE(testkit::Exists("/tmp/victim"));
}

TEST_F(ReplyPathTest, AFolderThatIsNotEmptyIsLogged) {
    const std::string file = std::string(velk::kReplySocket) + "/file";
    ASSERT_EQ(mkdir(velk::kReplySocket, 0755), 0);
    testkit::WriteFile(file, "");
    if (chown(velk::kReplySocket, kSomebody, kSomebody) == -1) {
        EXPECT_EQ(unlink(file.c_str()) + rmdir(velk::kReplySocket), 0);
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_FALSE(velk::ClearReplyPath());
    EXPECT_THAT(libc().Logs(), ElementsAre("QueryWlanDaemon remove " +
                                           testkit::ErrnoText(ENOTEMPTY) + ":Directory not empty"));
    EXPECT_EQ(unlink(file.c_str()) + rmdir(velk::kReplySocket), 0);
}

}  // namespace
