// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/machine.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Event;
using testkit::Fail;
using testkit::kReplySocket;
using testkit::kSomebody;
using testkit::Return;
using testkit::ShortBytes;

class ChannelTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        daemon.Stop();
        DeviceTest::TearDown();
    }
    testkit::FakeDaemon daemon;
};

class SendTest : public ChannelTest {};

TEST_F(SendTest, AMessageHas240BytesWithItsTypeInFront) {
    UMsgData body;
    memset(&body, 0xAB, sizeof(body));
    EXPECT_EQ(SendWlanRequestMessage(0x0102, &body), 0);
    daemon.Stop();
    EXPECT_THAT(daemon.requests(),
                ElementsAre(ShortBytes(0x0102) + std::string(2, '\0') + std::string(236, '\xAB')));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(SendTest, AMessageWithoutABodyCarriesZeros) {
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), 0);
    daemon.Stop();
    EXPECT_THAT(daemon.requests(), ElementsAre(ShortBytes(3) + std::string(238, '\0')));
}

TEST_F(SendTest, TheAddressLengthIsThePathsPlusTwo) {
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), 0);
    const Event call = libc().Events(Call::kConnect)[0];
    EXPECT_EQ(call.text, testkit::kRequestSocket);
    EXPECT_EQ(call.number, 22 + 2);
}

TEST_F(SendTest, TheSocketIsADatagramSocketAndNeverWaits) {
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), 0);
    EXPECT_EQ(libc().Events(Call::kSocket)[0].text, std::to_string(AF_UNIX));
    EXPECT_EQ(libc().Events(Call::kSocket)[0].number, SOCK_DGRAM | SOCK_CLOEXEC);
    EXPECT_EQ(libc().Events(Call::kSendto)[0].number, MSG_DONTWAIT);
    EXPECT_EQ(libc().Events(Call::kSendto)[0].text.size(), 240U);
}

TEST_F(SendTest, EachFailingCallIsLogged) {
    libc().Script(Call::kSocket, {Fail(EMFILE)});
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), -1);
    libc().Script(Call::kConnect, {Fail(ECONNREFUSED)});
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), -1);
    libc().Script(Call::kSendto, {Fail(EAGAIN)});
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), -1);
    EXPECT_THAT(
        libc().Logs(),
        ElementsAre("SendWlanRequestMessage socket:errno=24:Too many open files",
                    "SendWlanRequestMessage connect:" + testkit::ErrnoText(ECONNREFUSED) +
                        ":Connection refused",
                    "SendWlanRequestMessage sendto:errno=11:Resource temporarily unavailable"));
    EXPECT_EQ(libc().Events(Call::kClose).size(), 2U) << "every socket that was had";
}

TEST_F(SendTest, WithoutADaemonItFailsAtConnect) {
    daemon.Stop();
    EXPECT_EQ(SendWlanRequestMessage(3, nullptr), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("SendWlanRequestMessage connect:errno=2:No such file or directory"));
}

// Receiving, with a reply that is sent from the hook of the readiness post or lies there already.
class ReceiveTest : public ChannelTest {
  protected:
    void SetUp() override {
        ready = CreatSemaphore();
        memset(&out, 0xEE, sizeof(out));
    }
    void TearDown() override {
        DeleteSemaphore(ready);
        ChannelTest::TearDown();
    }
    // Asks the daemon, so that it replies once the semaphore is posted.
    int ReceiveReply(const std::string& bytes) {
        daemon.ReplyWith(bytes);
        EXPECT_EQ(SendWlanRequestMessage(VELK_WLAN_STATE, nullptr), 0);
        return RecvWlanResponseMessage(out, ready);
    }
    std::string Body() { return {reinterpret_cast<const char*>(&out), sizeof(out)}; }

    sem_t* ready = nullptr;
    UMsgData out;
};

TEST_F(ReceiveTest, TheBodyBeginsAfterTheFirstFourBytes) {
    EXPECT_EQ(ReceiveReply("TTzz" + std::string(235, 'b') + "e"), 0);
    EXPECT_EQ(Body(), std::string(235, 'b') + "e");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReceiveTest, BytesThatAShortReplyLacksAreZero) {
    EXPECT_EQ(ReceiveReply("TTzzbbb"), 0);
    EXPECT_EQ(Body(), "bbb" + std::string(233, '\0'));
    EXPECT_EQ(ReceiveReply("TT"), 0);
    EXPECT_EQ(Body(), std::string(236, '\0'));
}

TEST_F(ReceiveTest, AnEmptyReplyIsAllZero) {
    EXPECT_EQ(ReceiveReply(""), 0);
    EXPECT_EQ(Body(), std::string(236, '\0'));
}

TEST_F(ReceiveTest, OfALongReplyTheRestIsCut) {
    EXPECT_EQ(ReceiveReply("TTzz" + std::string(900, 'b')), 0);
    EXPECT_EQ(Body(), std::string(236, 'b'));
    EXPECT_EQ(libc().Events(Call::kRecvfrom)[0].text, "240");
    EXPECT_EQ(libc().Events(Call::kRecvfrom)[0].number, MSG_DONTWAIT);
}

TEST_F(ReceiveTest, TheStepsComeInTheirOrder) {
    EXPECT_EQ(ReceiveReply("TTzz"), 0);
    std::vector<std::string> order =
        libc().Order({Call::kUnlink, Call::kSocket, Call::kBind, Call::kSemPost, Call::kSelect,
                      Call::kRecvfrom, Call::kClose});
    order.erase(order.begin(), order.begin() + 2);  // the sending socket
    EXPECT_THAT(order, ElementsAre("unlink", "socket", "bind", "sem_post", "select", "recvfrom",
                                   "close", "unlink"));
}

TEST_F(ReceiveTest, TheReplySocketIsGoneAfterwards) {
    EXPECT_EQ(ReceiveReply("TTzz"), 0);
    EXPECT_FALSE(testkit::Exists(kReplySocket));
    EXPECT_EQ(libc().Events(Call::kBind)[0].text, kReplySocket);
    EXPECT_EQ(libc().Events(Call::kBind)[0].number, 24 + 2);
    const std::vector<Event> sockets = libc().Events(Call::kSocket);
    EXPECT_EQ(sockets[1].text, std::to_string(AF_UNIX));
    EXPECT_EQ(sockets[1].number, SOCK_DGRAM | SOCK_CLOEXEC);
}

TEST_F(ReceiveTest, AStaleReplySocketDoesNoHarm) {
    testkit::WriteFile(kReplySocket, "of a crash");
    EXPECT_EQ(ReceiveReply("TTzz"), 0);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReceiveTest, WithoutAReplyItGivesUpAfterSixtySeconds) {
    libc().Script(Call::kSelect, {Return(0)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_EQ(libc().Events(Call::kSelect)[0].text, "60.0");
    EXPECT_THAT(libc().Logs(), ElementsAre("RecvWlanResponseMessage select timeout"));
    EXPECT_FALSE(testkit::Exists(kReplySocket));
    EXPECT_EQ(Body(), std::string(236, '\xEE')) << "nothing is written";
}

TEST_F(ReceiveTest, AFailedSelectIsLogged) {
    libc().Script(Call::kSelect, {Fail(EINTR)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage select errno=4:Interrupted system call"));
    EXPECT_FALSE(testkit::Exists(kReplySocket));
    EXPECT_EQ(Body(), std::string(236, '\xEE')) << "nothing is written";
}

TEST_F(ReceiveTest, AFailedReceiveIsLogged) {
    libc().Script(Call::kSelect, {Return(1)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("RecvWlanResponseMessage recvfrom size=0"));
    EXPECT_FALSE(testkit::Exists(kReplySocket));
    EXPECT_EQ(Body(), std::string(236, '\xEE'));
}

TEST_F(ReceiveTest, AFailedSocketIsLogged) {
    libc().Script(Call::kSocket, {Fail(ENFILE)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(
        libc().Logs(),
        ElementsAre("RecvWlanResponseMessage socket:errno=23:Too many open files in system"));
    EXPECT_EQ(Body(), std::string(236, '\xEE')) << "nothing is written";
    EXPECT_TRUE(libc().Events(Call::kSemPost).empty());
}

TEST_F(ReceiveTest, AFailedModeChangeIsLoggedAndNoReplyIsAwaited) {
    libc().Script(Call::kFchmod, {Fail(EPERM)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage fchmod errno=1:Operation not permitted"));
    EXPECT_TRUE(libc().Events(Call::kBind).empty());
    EXPECT_TRUE(libc().Events(Call::kSemPost).empty());
    EXPECT_EQ(libc().Events(Call::kClose).size(), 1U);
}

TEST_F(ReceiveTest, AFailedBindIsLogged) {
    libc().Script(Call::kBind, {Fail(EADDRINUSE)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage bind " + testkit::ErrnoText(EADDRINUSE) +
                            ":Address already in use"));
    EXPECT_EQ(Body(), std::string(236, '\xEE')) << "nothing is written";
    EXPECT_TRUE(libc().Events(Call::kSemPost).empty());
    EXPECT_EQ(libc().Events(Call::kUnlink).size(), 1U);
}

// The daemon must find the semaphore that nobody has posted before the caller deletes it.
TEST_F(ReceiveTest, AfterAFailedBindTheDaemonIsGivenTime) {
    libc().Script(Call::kBind, {Fail(EADDRINUSE)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("log RecvWlanResponseMessage bind " + testkit::ErrnoText(EADDRINUSE) +
                                ":Address already in use",
                            "sleep 1"));
}

TEST_F(ReceiveTest, APathOfAnotherQueryOfTheCallersTakesNoTime) {
    libc().OnCall(Call::kBind, [](const Event&) { testkit::WriteFile(kReplySocket, ""); });
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("log RecvWlanResponseMessage bind " + testkit::ErrnoText(EADDRINUSE) +
                            ":Address already in use"));
    EXPECT_EQ(libc().Events(Call::kBind).size(), 1U);
    EXPECT_TRUE(testkit::Exists(kReplySocket));
}

TEST_F(ReceiveTest, APathThatAnotherUserTakesIsTakenBack) {
    int plants = 3;
    libc().OnCall(Call::kBind, [&](const Event&) {
        if (plants-- > 0) {
            testkit::WriteFile(kReplySocket, "");
            (void)!chown(kReplySocket, kSomebody, kSomebody);
        }
    });
    testkit::WriteFile(kReplySocket, "");
    if (chown(kReplySocket, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(ReceiveReply("TTzz"), 0);
    EXPECT_EQ(libc().Events(Call::kBind).size(), 4U);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReceiveTest, APathThatAnotherUserTakesEachTimeIsAFailure) {
    libc().OnCall(Call::kBind, [&](const Event&) {
        testkit::WriteFile(kReplySocket, "");
        (void)!chown(kReplySocket, kSomebody, kSomebody);
    });
    testkit::WriteFile(kReplySocket, "");
    if (chown(kReplySocket, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_EQ(libc().Events(Call::kBind).size(), 100U);
    EXPECT_THAT(libc().Story(),
                ElementsAre("log RecvWlanResponseMessage bind " + testkit::ErrnoText(EADDRINUSE) +
                                ":Address already in use",
                            "sleep 1"));
}

TEST_F(ReceiveTest, AFolderOfAnotherUserIsAFailureAtOnce) {
    const std::string file = std::string(kReplySocket) + "/file";
    ASSERT_EQ(mkdir(kReplySocket, 0755), 0);
    testkit::WriteFile(file, "");
    const bool is_given_away = chown(kReplySocket, kSomebody, kSomebody) == 0;
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_EQ(libc().Events(Call::kBind).size(), 1U);
    EXPECT_EQ(unlink(file.c_str()) + rmdir(kReplySocket), 0);
    if (!is_given_away) {
        GTEST_SKIP() << "only root may give files away";
    }
}

TEST_F(ReceiveTest, AFailedPostIsLoggedAndTheReplyAwaited) {
    libc().Script(Call::kSemPost, {Fail(EOVERFLOW)});
    libc().Script(Call::kSelect, {Return(0)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage sem_post " + testkit::ErrnoText(EOVERFLOW) +
                                ":Value too large for defined "
                                "data type",
                            "RecvWlanResponseMessage select timeout"));
}

TEST_F(ReceiveTest, ANullSemaphoreIsAnsweredAsInvalid) {
    libc().Script(Call::kSelect, {Return(0)});
    EXPECT_EQ(RecvWlanResponseMessage(out, nullptr), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage sem_post errno=22:Invalid argument",
                            "RecvWlanResponseMessage select timeout"));
    EXPECT_TRUE(libc().Events(Call::kSemPost).empty());
}

TEST_F(ReceiveTest, ADescriptorThatNoSetCanHoldIsAFailedSelect) {
    // The number is all that counts, so that no limit of this process is in the way.
    libc().Script(Call::kSocket, {Return(FD_SETSIZE)});
    libc().Script(Call::kFchmod, {Return(0)});
    libc().Script(Call::kBind, {Return(0)});
    EXPECT_EQ(RecvWlanResponseMessage(out, ready), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("RecvWlanResponseMessage select errno=22:Invalid argument"));
    EXPECT_TRUE(libc().Events(Call::kSelect).empty());
    EXPECT_EQ(libc().Events(Call::kClose)[0].text, std::to_string(FD_SETSIZE));
    EXPECT_EQ(libc().Events(Call::kUnlink).size(), 2U) << "before and after";
}

}  // namespace
