// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wlan/query.h"

#include <cerrno>
#include <cstring>
#include <thread>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/machine.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "velk.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::Return;
using testkit::ShortBytes;

class QueryTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }
    std::vector<std::string> Order() {
        return libc().Order({Call::kSemOpen, Call::kSendto, Call::kSemPost, Call::kRecvfrom,
                             Call::kSemClose, Call::kSemUnlink});
    }
    testkit::FakeDaemon daemon;
    UMsgData out{};
};

TEST_F(QueryTest, AsksAndGetsTheAnswer) {
    SMsgConf conf{};
    conf.channel = 11;
    daemon.SetConf(conf);
    memset(&out, 0xEE, sizeof(out));
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), 0);
    EXPECT_EQ(out.conf.channel, 11);
    EXPECT_THAT(daemon.requests(), ElementsAre(ShortBytes(3) + std::string(238, '\0')));
    EXPECT_THAT(Order(), ElementsAre("sem_open", "sendto", "sem_post", "recvfrom", "sem_close",
                                     "sem_unlink"));
    EXPECT_FALSE(testkit::Exists(testkit::kReplySocket));
    EXPECT_FALSE(testkit::Exists(testkit::kSemaphoreFile));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(QueryTest, WithoutADaemonNoReplyIsAwaited) {
    daemon.Stop();
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), -1);
    EXPECT_THAT(Order(), ElementsAre("sem_open", "sem_close", "sem_unlink"));
    EXPECT_FALSE(testkit::Exists(testkit::kSemaphoreFile));
}

TEST_F(QueryTest, ASilentDaemonIsAFailureAfterTheTimeLimit) {
    daemon.StaySilent();
    libc().Script(Call::kSelect, {Return(0)});
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("RecvWlanResponseMessage select timeout"));
    EXPECT_THAT(Order(), ElementsAre("sem_open", "sendto", "sem_post", "sem_close", "sem_unlink"));
}

TEST_F(QueryTest, WithoutASemaphoreItStillAwaitsTheReply) {
    libc().Script(Call::kSemOpen, {Fail(EMFILE)});
    libc().Script(Call::kSelect, {Return(0)});
    daemon.StaySilent();
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("CreatSemaphore sem_open:errno=24:Too many open files",
                            "SendWlanRequestMessage CreatSemaphore",
                            "RecvWlanResponseMessage sem_post errno=22:Invalid argument",
                            "RecvWlanResponseMessage select timeout",
                            "DeleteSemaphore sem_close errno=22:Invalid argument",
                            "DeleteSemaphore sem_unlink errno=2:No such file or directory"));
    daemon.Stop();
    EXPECT_THAT(daemon.types(), ElementsAre(3));
}

TEST_F(QueryTest, NothingIsSentWhileAnotherUserKeepsTheSemaphore) {
    const testkit::Emptied full(testkit::kSemaphoreFolder, "nr_inodes=1");
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), -1);
    EXPECT_THAT(Order(), testing::Each("sem_open"));
    daemon.Stop();
    EXPECT_THAT(daemon.requests(), IsEmpty());
}

TEST_F(QueryTest, NothingIsSentWhileAnotherUserKeepsTheReplyPath) {
    const std::string file = "/tmp/WlanAplFromWlanSock/file";
    ASSERT_EQ(mkdir(testkit::kReplySocket, 0755), 0);
    testkit::WriteFile(file, "");
    const bool is_given_away = chown(testkit::kReplySocket, 12345, 12345) == 0;
    EXPECT_EQ(velk::QueryWlanDaemon(VELK_WLAN_REPORT, out), -1);
    EXPECT_EQ(unlink(file.c_str()) + rmdir(testkit::kReplySocket), 0);
    if (!is_given_away) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_THAT(Order(), IsEmpty());
}

// Two at once may take each other's reply away, but neither crashes, keeps a file open or leaves
// a file in place.
TEST_F(QueryTest, TwoQueriesAtOnceLeaveNoFiles) {
    libc().ScriptAlways(Call::kSelect, Return(1));  // a reply that was taken away is not awaited
    const auto query = [] {
        UMsgData answer{};
        for (int i = 0; i < 200; ++i) {
            (void)velk::QueryWlanDaemon(VELK_WLAN_REPORT, answer);
        }
    };
    std::thread other(query);
    query();
    other.join();
    daemon.Stop();
    EXPECT_FALSE(testkit::Exists(testkit::kSemaphoreFile));
    EXPECT_FALSE(testkit::Exists(testkit::kReplySocket));
}

}  // namespace
