// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Tests that another user of the device cannot obtain wireless keys.
#include <atomic>
#include <cstring>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_daemon.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "world/child.h"
#include "world/shared.h"

namespace world {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Event;
using testkit::kReplySocket;
using testkit::kRequestSocket;
using testkit::kSemaphoreFile;
using testkit::kSemaphoreFolder;
using testkit::kSemaphoreName;

constexpr char kKey[] = "zq7Xsecret9vW";

const Conditions kAsNobody{.user = kNobody};

// The actions of the other user.

sockaddr_un ReplyAddress() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, kReplySocket);
    return address;
}

int OpenSocket() {
    return socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

bool Bind(int fd) {
    const sockaddr_un address = ReplyAddress();
    return bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

bool MakePostedSemaphore() {
    sem_t* sem = sem_open(kSemaphoreName, O_RDWR | O_CREAT | O_EXCL, 0666U, 1000U);
    return sem != SEM_FAILED && sem_close(sem) == 0;
}

bool PostSemaphore() {
    sem_t* sem = sem_open(kSemaphoreName, O_RDWR, 0U, 0U);
    return sem != SEM_FAILED && sem_post(sem) == 0;
}

// Returns true if a record with the key has come.
bool HasKey(int fd) {
    char record[240];
    const ssize_t size = recv(fd, record, sizeof(record), 0);
    return size > 0 && memmem(record, static_cast<size_t>(size), kKey, strlen(kKey)) != nullptr;
}

// Takes path and semaphore before the query and waits.
int Squat(std::atomic<bool>& is_there, std::atomic<bool>& is_over) {
    const int fd = OpenSocket();
    if (!Bind(fd) || !MakePostedSemaphore()) {
        return 2;
    }
    is_there = true;
    bool has_key = false;
    while (!has_key && !is_over) {
        has_key = HasKey(fd);
    }
    return has_key || HasKey(fd) ? 1 : 0;
}

// Takes path and semaphore whenever they are free.
int Race(std::atomic<int>& keys) {
    int fd = OpenSocket();
    while (true) {
        (void)MakePostedSemaphore();
        if (Bind(fd)) {
            for (int looks = 0; looks < 20; ++looks) {
                keys += HasKey(fd) ? 1 : 0;
                (void)MakePostedSemaphore();
            }
            close(fd);
            fd = OpenSocket();
            (void)unlink(kReplySocket);
        }
    }
}

// Sends a record of its own.
bool SendRecord(int fd) {
    std::string record(240, '\0');
    record[4] = 4;
    record.replace(6, 4, "evil");
    const sockaddr_un address = ReplyAddress();
    return sendto(fd, record.data(), record.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                  sizeof(address)) != -1;
}

int Inject() {
    const int fd = OpenSocket();
    while (true) {
        (void)SendRecord(fd);
    }
}

// Sets another umask during its lifetime.
class OpenUmask {
  public:
    OpenUmask() : saved_(umask(0)) {}
    ~OpenUmask() { (void)umask(saved_); }
    OpenUmask(const OpenUmask&) = delete;
    OpenUmask& operator=(const OpenUmask&) = delete;

  private:
    const mode_t saved_;
};

class WorldWirelessTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        if (!IsPossible(kAsNobody)) {
            GTEST_SKIP() << "no other users on this private device";
        }
        SMsgConf conf{};
        conf.ssid_length = 4;
        memcpy(conf.ssid, "home", 4);
        conf.channel = 6;
        conf.psk_length = sizeof(kKey) - 1;
        memcpy(conf.psk, kKey, sizeof(kKey) - 1);
        daemon_.SetConf(conf);
        libc().OnCall(Call::kSleep, [](const Event&) { usleep(100'000); });
    }
    void TearDown() override {
        daemon_.Stop();
        for (const char* path : {kReplySocket, kSemaphoreFile}) {
            (void)remove(path);
        }
        DeviceTest::TearDown();
    }

    int QueryKey() { return Execute(VELK_GET, VELK_CMD_PSK, "eth1"); }

    // Runs `work` as nobody at each call of this kind and keeps its result.
    void AsNobodyAt(Call call, const std::function<int()>& work) {
        libc().OnCall(call, [this, work](const Event&) { nobody_ = InChild(kAsNobody, work); });
    }

    testkit::FakeDaemon daemon_;
    std::optional<int> nobody_;
};

// ---- keys

TEST_F(WorldWirelessTest, ASquatterIsRemovedAndGetsNoKey) {
    for (int attempt = 0; attempt < 30; ++attempt) {
        const Shared<std::atomic<bool>> is_there;
        const Shared<std::atomic<bool>> is_over;
        Child squatter(kAsNobody, [&] { return Squat(*is_there, *is_over); });
        while (!*is_there) {
            usleep(100);
        }
        EXPECT_EQ(QueryKey(), 0);
        EXPECT_STREQ(response.data, kKey);
        *is_over = true;
        EXPECT_EQ(squatter.Wait(), 0) << "1: it has the key";
    }
}

// If such a user took a reply away, the query would wait for a whole minute.
TEST_F(WorldWirelessTest, AUserWhoRacesForPathAndSemaphoreGetsNoKey) {
    const Shared<std::atomic<int>> keys;
    const Child racer(kAsNobody, [&] { return Race(*keys); });
    int answered = 0;
    for (int attempt = 0; attempt < 1000; ++attempt) {
        answered += QueryKey() == 0 ? 1 : 0;
    }
    EXPECT_EQ(*keys, 0);
    EXPECT_GT(answered, 0);
}

TEST_F(WorldWirelessTest, BetweenRequestAndPostTheSemaphoreIsTheCallersAlone) {
    ASSERT_EQ(InChild(kAsNobody, [] { return MakePostedSemaphore() ? 0 : 1; }), 0);
    const OpenUmask umask;
    AsNobodyAt(Call::kSendto, [] {
        return unlink(kSemaphoreFile) == 0 || MakePostedSemaphore() || PostSemaphore() ? 1 : 0;
    });
    EXPECT_EQ(QueryKey(), 0);
    EXPECT_EQ(nobody_, 0);
}

TEST_F(WorldWirelessTest, FromThePostOnThePathIsTheCallersAlone) {
    const OpenUmask umask;
    AsNobodyAt(Call::kSemPost, [] {
        const int fd = OpenSocket();
        return unlink(kReplySocket) == 0 || Bind(fd) || SendRecord(fd) ? 1 : 0;
    });
    EXPECT_EQ(QueryKey(), 0);
    EXPECT_EQ(nobody_, 0);
}

TEST_F(WorldWirelessTest, WithoutASemaphoreNobodyElseCanMakeOne) {
    libc().Script(Call::kSemOpen, {testkit::Fail(ENOMEM)});
    libc().Script(Call::kSelect, {testkit::Return(0)});
    daemon_.StaySilent();
    AsNobodyAt(Call::kSendto, [] { return MakePostedSemaphore() ? 1 : 0; });
    EXPECT_EQ(QueryKey(), -1);
    EXPECT_EQ(nobody_, 0);
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
}

// Another user can fill the folder, and keep a file of his own ready.
TEST_F(WorldWirelessTest, WithoutRoomForASemaphoreNothingIsAsked) {
    const testkit::Emptied full(kSemaphoreFolder, "nr_inodes=1");
    EXPECT_EQ(QueryKey(), -1);
    daemon_.Stop();
    EXPECT_THAT(daemon_.requests(), IsEmpty());
}

TEST_F(WorldWirelessTest, APathThatCannotBeFreedEndsTheQueryAtOnce) {
    ASSERT_EQ(InChild(kAsNobody, [] { return mkdir(kReplySocket, 0755); }), 0);
    testkit::WriteFile(std::string(kReplySocket) + "/full", "");
    EXPECT_EQ(QueryKey(), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("QueryWlanDaemon remove errno=39:Directory not empty"));
    daemon_.Stop();
    EXPECT_THAT(daemon_.requests(), IsEmpty());
    (void)unlink((std::string(kReplySocket) + "/full").c_str());
}

TEST_F(WorldWirelessTest, AnotherUsersSemaphoreEndsTheQueryOfOneWhoCannotRemoveIt) {
    ASSERT_EQ(InChild(kAsNobody, [] { return MakePostedSemaphore() ? 0 : 1; }), 0);
    ASSERT_EQ(chmod(kSemaphoreFile, 0666), 0);
    ASSERT_EQ(chmod(kRequestSocket, 0666), 0);
    EXPECT_EQ(InChild({.user = kNobody - 1}, [this] { return QueryKey() == -1 ? 0 : 1; }), 0);
    daemon_.Stop();
    EXPECT_THAT(daemon_.requests(), IsEmpty());
}

// ---- records of others

TEST_F(WorldWirelessTest, NoRecordOfAnotherUserIsStored) {
    const OpenUmask umask;
    const Child injector(kAsNobody, Inject);
    for (char channel = 1; channel <= 13; ++channel) {
        for (int attempt = 0; attempt < 10; ++attempt) {
            EXPECT_EQ(Execute(VELK_SET, VELK_CMD_CHANNEL, "eth1", std::string(1, channel)), 0);
        }
    }
    daemon_.Stop();
    const SMsgConf stored = daemon_.conf();
    EXPECT_EQ(std::string(stored.ssid, stored.ssid_length), "home");
    EXPECT_EQ(stored.channel, 13);
}

TEST_F(WorldWirelessTest, TheReplySocketIsTheCallersAloneWithAnyUmask) {
    const OpenUmask umask;
    mode_t mode = 0;
    libc().OnCall(Call::kSemPost,
                  [&](const Event&) { mode = testkit::IdentityOf(kReplySocket).mode; });
    EXPECT_EQ(QueryKey(), 0);
    EXPECT_EQ(mode & 07777, 0600U);
}

}  // namespace
}  // namespace world
