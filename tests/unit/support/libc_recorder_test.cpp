// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The recorder must see every call, under any symbol that the compiler uses for it.
#include "support/libc_recorder.h"

#include <cerrno>
#include <cstring>
#include <new>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>

#include "support/call_probe.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testkit::Call;
using testkit::DeviceTest;
using testkit::Event;
using testkit::Fail;
using testkit::Pass;
using testkit::Return;

// The calls of one flavour of the probe and the symbols they must arrive under.
struct Flavour {
    const char* name;
    int (*open)(const char*, int);
    int (*open_mode)(const char*, int, unsigned);
    long (*read)(int, unsigned long);
    long (*write)(int, const char*, unsigned long);
    int (*close)(int);
    int (*flock)(int, int);
    int (*fchmod)(int, unsigned);
    int (*socket)(int, int);
    int (*ioctl)(int, unsigned long, void*);
    int (*nanosleep)(long);
    int (*connect)(int, const sockaddr*, unsigned);
    int (*bind)(int, const sockaddr*, unsigned);
    long (*sendto)(int, const char*, unsigned long);
    long (*recvfrom)(int, unsigned long);
    int (*select)(int, timeval*);
    int (*unlink)(const char*);
    sem_t* (*sem_open)(const char*);
    int (*sem_post)(sem_t*);
    int (*sem_close)(sem_t*);
    int (*sem_unlink)(const char*);
    int (*system)(const char*);
    unsigned (*sleep)(unsigned);
    void (*syslog)(int, const char*);
    void (*vsyslog)(int, const char*, ...);
    char* (*allocate)();
    const char* open_symbol;
    const char* open_mode_symbol;
    const char* read_symbol;
    const char* recvfrom_symbol;
    const char* syslog_symbol;
    const char* vsyslog_symbol;
};

#define PROBE_FUNCTIONS(name)                                                                      \
    name##_open, name##_open_mode, name##_read, name##_write, name##_close, name##_flock,          \
        name##_fchmod, name##_socket, name##_ioctl, name##_nanosleep, name##_connect, name##_bind, \
        name##_sendto, name##_recvfrom, name##_select, name##_unlink, name##_sem_open,             \
        name##_sem_post, name##_sem_close, name##_sem_unlink, name##_system, name##_sleep,         \
        name##_syslog, name##_vsyslog, name##_allocate

// Everything for a 32-bit machine is built for 64-bit file offsets.
constexpr bool kIsAlwaysLarge = sizeof(off_t) > sizeof(long);
constexpr const char* kOpen = kIsAlwaysLarge ? "open64" : "open";
constexpr const char* kCheckedOpen = kIsAlwaysLarge ? "__open64_2" : "__open_2";

constexpr Flavour kFlavours[] = {
    {"plain", PROBE_FUNCTIONS(plain), kOpen, kOpen, "read", "recvfrom", "syslog", "vsyslog"},
    {"large", PROBE_FUNCTIONS(large), "open64", "open64", "read", "recvfrom", "syslog", "vsyslog"},
    {"fortified", PROBE_FUNCTIONS(fortified), kCheckedOpen, kOpen, "__read_chk", "__recvfrom_chk",
     "__syslog_chk", "__vsyslog_chk"},
    {"fortified_large", PROBE_FUNCTIONS(fortified_large), "__open64_2", "open64", "__read_chk",
     "__recvfrom_chk", "__syslog_chk", "__vsyslog_chk"},
};

class LibcRecorderTest : public DeviceTest, public testing::WithParamInterface<Flavour> {
  protected:
    // Returns the only recorded call of a kind; fails the test if there is none.
    Event Only(Call call) {
        const std::vector<Event> events = libc().Events(call);
        EXPECT_EQ(events.size(), 1U);
        return events.size() == 1 ? events[0] : Event{call, "(not intercepted)", "", -1};
    }
};

TEST_P(LibcRecorderTest, SeesOpenUnderItsSymbol) {
    const int fd = GetParam().open("/dev/null", O_RDONLY);
    EXPECT_GE(fd, 0);
    const Event event = Only(Call::kOpen);
    EXPECT_EQ(event.text, "/dev/null");
    EXPECT_EQ(event.spelling, GetParam().open_symbol);
    EXPECT_EQ(GetParam().close(fd), 0);
}

TEST_P(LibcRecorderTest, SeesOpenWithAModeAndPassesTheModeOn) {
    const int fd = GetParam().open_mode("/var/tmp/probe", O_CREAT | O_WRONLY, 0640);
    const Event event = Only(Call::kOpen);
    EXPECT_EQ(event.spelling, GetParam().open_mode_symbol);
    EXPECT_EQ(GetParam().fchmod(fd, 0600), 0);
    EXPECT_EQ(Only(Call::kFchmod).number, 0600);
    EXPECT_EQ(GetParam().close(fd), 0);
    EXPECT_TRUE(testkit::Exists("/var/tmp/probe"));
}

TEST_P(LibcRecorderTest, SeesReadWriteFlockAndClose) {
    const int fd = GetParam().open_mode("/var/tmp/probe", O_CREAT | O_RDWR | O_APPEND, 0600);
    EXPECT_EQ(GetParam().write(fd, "text", 4), 4);
    EXPECT_EQ(Only(Call::kWrite).text, "text");
    EXPECT_EQ(GetParam().read(fd, 16), 0);
    EXPECT_EQ(Only(Call::kRead).spelling, GetParam().read_symbol);
    EXPECT_EQ(GetParam().flock(fd, LOCK_SH), 0);
    EXPECT_EQ(Only(Call::kFlock).number, LOCK_SH);
    EXPECT_EQ(GetParam().close(fd), 0);
    EXPECT_EQ(Only(Call::kClose).text, std::to_string(fd));
}

TEST_P(LibcRecorderTest, SeesSocketsAndIoctls) {
    const int fd = GetParam().socket(AF_INET, SOCK_STREAM);
    EXPECT_GE(fd, 0);
    EXPECT_EQ(Only(Call::kSocket).number, SOCK_STREAM);
    int waiting = -1;
    EXPECT_EQ(GetParam().ioctl(fd, FIONREAD, &waiting), 0);
    EXPECT_EQ(waiting, 0) << "the kernel answers through the argument";
    EXPECT_EQ(Only(Call::kIoctl).number, FIONREAD);
    EXPECT_EQ(GetParam().close(fd), 0);
}

TEST_P(LibcRecorderTest, SeesDatagramCalls) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, "/tmp/probe");
    constexpr unsigned kLength = sizeof(address.sun_family) + 10;
    const auto* plain_address = reinterpret_cast<const sockaddr*>(&address);
    const int fd = GetParam().socket(AF_UNIX, SOCK_DGRAM);
    EXPECT_EQ(GetParam().bind(fd, plain_address, kLength), 0);
    EXPECT_EQ(Only(Call::kBind).text, "/tmp/probe");
    EXPECT_EQ(Only(Call::kBind).number, 12);
    EXPECT_EQ(GetParam().connect(fd, plain_address, kLength), 0);
    EXPECT_EQ(Only(Call::kConnect).text, "/tmp/probe");
    EXPECT_EQ(GetParam().sendto(fd, "text", 4), 4);
    EXPECT_EQ(Only(Call::kSendto).text, "text");
    EXPECT_EQ(GetParam().recvfrom(fd, 16), 4);
    EXPECT_EQ(Only(Call::kRecvfrom).spelling, GetParam().recvfrom_symbol);
    EXPECT_EQ(GetParam().unlink("/tmp/probe"), 0);
    EXPECT_EQ(Only(Call::kUnlink).text, "/tmp/probe");
    EXPECT_EQ(GetParam().close(fd), 0);
}

TEST_P(LibcRecorderTest, SeesSelectAndSemaphores) {
    timeval no_time{};
    EXPECT_EQ(GetParam().select(0, &no_time), 0);
    EXPECT_EQ(Only(Call::kSelect).text, "0.0");
    sem_t* sem = GetParam().sem_open("/probe");
    EXPECT_NE(sem, nullptr);
    EXPECT_EQ(Only(Call::kSemOpen).text, "/probe 438 0");
    EXPECT_EQ(GetParam().sem_post(sem), 0);
    EXPECT_EQ(GetParam().sem_close(sem), 0);
    EXPECT_EQ(GetParam().sem_unlink("/probe"), 0);
    EXPECT_EQ(libc().Order({Call::kSemPost, Call::kSemClose, Call::kSemUnlink}),
              (std::vector<std::string>{"sem_post", "sem_close", "sem_unlink"}));
}

TEST_P(LibcRecorderTest, SeesShortSleepsAndSleepsThem) {
    EXPECT_EQ(GetParam().nanosleep(1000), 0);
    EXPECT_EQ(Only(Call::kNanosleep).text, "1000");
}

TEST_P(LibcRecorderTest, SeesShellLinesAndRunsThem) {
    EXPECT_EQ(GetParam().system("echo ran > /var/tmp/probe"), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("echo ran > /var/tmp/probe"));
    EXPECT_EQ(testkit::ReadFile("/var/tmp/probe"), "ran\n");
}

TEST_P(LibcRecorderTest, SeesSleepAndDoesNotSleep) {
    EXPECT_EQ(GetParam().sleep(100000), 0U);
    EXPECT_EQ(Only(Call::kSleep).text, "100000");
}

TEST_P(LibcRecorderTest, SeesLogLinesFormattedWithTheirPriority) {
    GetParam().syslog(LOG_NOTICE, "line");
    const Event event = Only(Call::kSyslog);
    EXPECT_EQ(event.text, "probe line");
    EXPECT_EQ(event.number, LOG_NOTICE);
    EXPECT_EQ(event.spelling, GetParam().syslog_symbol);
}

TEST_P(LibcRecorderTest, SeesLogLinesWithAnArgumentList) {
    GetParam().vsyslog(LOG_ERR, "number %d", 7);
    const Event event = Only(Call::kSyslog);
    EXPECT_EQ(event.text, "number 7");
    EXPECT_EQ(event.number, LOG_ERR);
    EXPECT_EQ(event.spelling, GetParam().vsyslog_symbol);
}

TEST_P(LibcRecorderTest, FailsTheGivenAllocation) {
    const testkit::AllocationFault fault(2);
    char* first = GetParam().allocate();
    EXPECT_THROW(GetParam().allocate(), std::bad_alloc);
    delete[] first;
    delete[] GetParam().allocate();
}

INSTANTIATE_TEST_SUITE_P(Flavours, LibcRecorderTest, testing::ValuesIn(kFlavours),
                         [](const auto& flavour) { return std::string(flavour.param.name); });

class LibcScriptTest : public DeviceTest {};

TEST_F(LibcScriptTest, AnswersInOrderThenPassesThrough) {
    libc().Script(Call::kSystem, {Fail(ENOMEM), Pass(), Return(256)});
    errno = 0;
    EXPECT_EQ(plain_system("true"), -1);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(plain_system("true"), 0);
    EXPECT_EQ(plain_system("true"), 256);
    EXPECT_EQ(plain_system("true"), 0);
}

TEST_F(LibcScriptTest, AnswersAlwaysAfterTheScript) {
    libc().Script(Call::kFlock, {Return(5)});
    libc().ScriptAlways(Call::kFlock, Fail(EINTR));
    EXPECT_EQ(plain_flock(99, LOCK_UN), 5);
    EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    libc().Reset();
    errno = 0;
    EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    EXPECT_EQ(errno, EBADF) << "after Reset the call reaches the kernel again";
}

TEST_F(LibcScriptTest, AScriptedCloseFailureClosesNevertheless) {
    const int fd = plain_open("/dev/null", O_RDONLY);
    libc().Script(Call::kClose, {Fail(EIO)});
    EXPECT_EQ(plain_close(fd), -1);
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

TEST_F(LibcScriptTest, OpensAnotherFileInstead) {
    testkit::WriteFile("/var/tmp/other", "1234");
    libc().Redirect(testkit::kRoutingTable, "/var/tmp/other");
    const int fd = large_open(testkit::kRoutingTable, O_RDONLY);
    EXPECT_EQ(plain_read(fd, 16), 4);
    plain_close(fd);
}

TEST_F(LibcScriptTest, LeavesATestsOwnHelpersAlone) {
    libc().ScriptAlways(Call::kFlock, Return(5));
    {
        const testkit::Unrecorded unrecorded;
        EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    }
    EXPECT_EQ(plain_flock(99, LOCK_UN), 5);
    EXPECT_EQ(libc().Events(Call::kFlock).size(), 1U);
}

TEST_F(LibcScriptTest, RunsAHookBeforeTheCall) {
    std::string seen;
    libc().OnCall(Call::kSystem, [&](const Event& event) { seen = event.text; });
    EXPECT_EQ(plain_system("true"), 0);
    EXPECT_EQ(seen, "true");
}

TEST_F(LibcScriptTest, APlannedFaultHitsOneCallAndNotItsHook) {
    int hooks = 0;
    libc().OnCall(Call::kSystem, [&](const Event&) { ++hooks; });
    libc().ScriptAlways(Call::kSystem, Return(7));
    libc().PlanFault(Call::kSystem, 2, testkit::Reach::kThatOne, EAGAIN);
    EXPECT_EQ(plain_system("true"), 7);
    EXPECT_EQ(plain_system("true"), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(plain_system("true"), 7);
    EXPECT_EQ(hooks, 2);
}

TEST_F(LibcScriptTest, APlannedFaultCanAnswerWithoutAnError) {
    libc().PlanFault(Call::kSystem, 1, testkit::Reach::kThatOne, Return(127 << 8));
    EXPECT_EQ(plain_system("exit 3"), 127 << 8);
    EXPECT_EQ(plain_system("exit 3"), 3 << 8);
}

TEST_F(LibcScriptTest, APlannedFaultHitsAllLaterCallsUntilItIsForgotten) {
    libc().ScriptAlways(Call::kFlock, Return(5));
    libc().PlanFault(Call::kFlock, 2, testkit::Reach::kAllFrom, ENOLCK);
    EXPECT_EQ(plain_flock(99, LOCK_UN), 5);
    EXPECT_FALSE(libc().HasFaultStruck());
    EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    EXPECT_TRUE(libc().HasFaultStruck());
    EXPECT_EQ(plain_flock(99, LOCK_UN), -1);
    libc().ForgetFault();
    EXPECT_EQ(plain_flock(99, LOCK_UN), 5);
}

TEST_F(LibcScriptTest, AnObserverSeesEveryCallAndIsNotSeenItself) {
    int calls = 0;
    libc().OnEveryCall([&](const Event& event) {
        ++calls;
        EXPECT_EQ(event.number, event.call == Call::kFlock ? LOCK_UN : 0);
        plain_flock(99, LOCK_UN);
    });
    plain_flock(99, LOCK_UN);
    plain_close(99);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(libc().Events(Call::kFlock).size(), 1U);
}

TEST_F(LibcScriptTest, SelectDoesNotWaitIfAsked) {
    libc().NeverWait();
    timeval minute{60, 0};
    EXPECT_EQ(plain_select(0, &minute), 0);
    EXPECT_EQ(minute.tv_sec, 60) << "nothing of the time is used up";
}

TEST_F(LibcScriptTest, ListsShellLinesSleepsAndLogLinesInTheirOrder) {
    EXPECT_EQ(plain_system("true"), 0);
    EXPECT_EQ(plain_sleep(3), 0U);
    plain_syslog(LOG_NOTICE, "x");
    EXPECT_THAT(libc().Story(), ElementsAre("system true", "sleep 3", "log probe x"));
}

}  // namespace
