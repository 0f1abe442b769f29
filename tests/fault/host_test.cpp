// Host programs that are not kind to a library: what each does to a call.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/scene.h"
#include "support/device_test.h"

namespace fault {
namespace {

using testing::Contains;
using testkit::LibcRecorder;

int RequestAddress(uint32_t type, const char* address, _velk_request& response) {
    const _velk_request request = testkit::MakeRequest(type, VELK_CMD_IP_ADDRESS, "eth0", address);
    return execute_velk_command(&request, &response);
}

// Sets an address with the real shell and tools and reads it back.
bool AddressCanBeSet(const char* address) {
    _velk_request response{};
    return RequestAddress(VELK_SET, address, response) == 0 &&
           RequestAddress(VELK_GET, "", response) == 0 && strcmp(response.data, address) == 0;
}

int QuerySsid(_velk_request& response) {
    const _velk_request request = testkit::MakeRequest(VELK_GET, VELK_CMD_SSID, "eth1");
    return execute_velk_command(&request, &response);
}

class HostTest : public testkit::DeviceTest {
  protected:
    HostTest() {
        device_.emplace(Scene{});
        device_->UseRealTools();
        VkLibUnLock(VkLibLock());  // its file is there from an earlier call
        libc().ForgetEvents();
    }
    void TearDown() override {
        device_.reset();
        DeviceTest::TearDown();
    }

    // Runs it in a host program of its own. True when it answers true.
    static bool InAHost(const std::function<bool()>& call) {
        const pid_t child = fork();
        if (child == 0) {
            _exit(call() ? 0 : 1);
        }
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return status == 0;
    }

  private:
    std::optional<Device> device_;
};

// ---- children

TEST_F(HostTest, ThatIgnoresItsChildrenCanSet) {
    EXPECT_TRUE(InAHost([] {
        (void)signal(SIGCHLD, SIG_IGN);
        return AddressCanBeSet("10.1.2.3");
    }));
    EXPECT_THAT(testkit::ReadFile("/etc/network/interfaces"), testing::HasSubstr("10.1.2.3"));
}

// A shell whose end nobody keeps looks like one that was not run.
TEST_F(HostTest, ThatIgnoresItsChildrenCannotUseTools) {
    EXPECT_TRUE(InAHost([] {
        (void)signal(SIGCHLD, SIG_IGN);
        _velk_request own{};
        const _velk_request request =
            testkit::MakeRequest(VELK_SET, VELK_CMD_LINK_SPEED, "eth0", std::string_view("\1", 1));
        return execute_velk_command(&request, &own) == -1 &&
               LibcRecorder::Get().Logs().back() == "system errno=10:No child processes";
    }));
}

const std::vector<long> kStartsOfProcesses{
    SYS_clone,
    SYS_clone3,
#ifdef SYS_vfork
    SYS_vfork,
#endif
};

// From now on these system calls of the process fail.
bool Refuse(const std::vector<long>& calls, unsigned error) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const long call : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// system(3) tells a process that cannot be started as a command that failed, and that is not
// noticed: the edit stays unmade, and its copy stays for the next edit to replace.
TEST_F(HostTest, WithoutRoomForAProcessChangesNothingAndIsNotTold) {
    const Files before = ReadTargets();
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return Refuse(kStartsOfProcesses, EAGAIN) && RequestAddress(VELK_SET, "10.1.2.3", own) == 0;
    }));
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_THAT(Leftovers(), testing::ElementsAre("/var/tmp/interfaces"));
    EXPECT_TRUE(AddressCanBeSet("10.1.2.3"));
}

TEST_F(HostTest, WithoutAShellChangesNothingAndIsNotTold) {
    const Files before = ReadTargets();
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return Refuse({SYS_execve}, ENOENT) && RequestAddress(VELK_SET, "10.1.2.3", own) == 0;
    }));
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_THAT(Leftovers(), testing::ElementsAre("/var/tmp/interfaces"));
    EXPECT_TRUE(AddressCanBeSet("10.1.2.3"));
}

// ---- descriptors

TEST_F(HostTest, WithoutStandardDescriptorsCanSet) {
    EXPECT_TRUE(InAHost([] {
        for (const int fd : {0, 1, 2}) {
            close(fd);
        }
        return AddressCanBeSet("10.1.2.3");
    }));
}

TEST_F(HostTest, WithOneStandardDescriptorMissingCanSet) {
    for (const int fd : {0, 1, 2}) {
        EXPECT_TRUE(InAHost([fd] {
            close(fd);
            return AddressCanBeSet("10.1.2.3") && fcntl(fd, F_GETFD) == -1;
        })) << fd;
    }
}

// Descriptor 0 does not count as a lock. When the lock's file has to be made first, nothing is left
// to try; the file is there then.
TEST_F(HostTest, WithoutStandardInputFailsOnceWhereNobodyEverCalled) {
    unlink("/var/tmp/vklib_lock");
    EXPECT_TRUE(InAHost([] {
        close(0);
        _velk_request own{};
        return RequestAddress(VELK_SET, "10.1.2.3", own) == -1 && AddressCanBeSet("10.1.2.3");
    }));
}

// False when the system does not allow that many.
bool LimitDescriptors(int count) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == -1) {
        return false;
    }
    limit.rlim_cur = static_cast<rlim_t>(count);
    return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

// Fills the numbers below `count`; false when the system does not allow that many.
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

TEST_F(HostTest, WithManyDescriptorsCanSet) {
    EXPECT_TRUE(InAHost([] { return OpenDescriptorsBelow(2000) && AddressCanBeSet("10.1.2.3"); }));
}

// select(2) knows no descriptor beyond 1023; nothing is written behind its set.
TEST_F(HostTest, WithManyDescriptorsCannotAskTheDaemon) {
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return QuerySsid(own) == 0 && OpenDescriptorsBelow(2000) && QuerySsid(own) == -1;
    }));
    EXPECT_FALSE(testkit::Exists("/tmp/WlanAplFromWlanSock"));
    EXPECT_FALSE(testkit::Exists("/dev/shm/sem.WlanAplRecvSem"));
}

TEST_F(HostTest, WithoutAnyDescriptorLeftIsToldSo) {
    EXPECT_TRUE(InAHost([] {
        const int next = open("/dev/null", O_RDONLY | O_CLOEXEC);
        _velk_request own{};
        return next > 0 && LimitDescriptors(next + 1) &&
               RequestAddress(VELK_SET, "10.1.2.3", own) == -1 &&
               RequestAddress(VELK_GET, "", own) == -1;
    }));
}

// ---- stack

// A thread on memory that shows how deep its stack went.
class PaintedThread {
  public:
    explicit PaintedThread(size_t size)
        : size_(size),
          memory_(static_cast<unsigned char*>(
              mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))) {
        memset(memory_, kPaint, size_);
    }
    ~PaintedThread() { munmap(memory_, size_); }
    PaintedThread(const PaintedThread&) = delete;
    PaintedThread& operator=(const PaintedThread&) = delete;

    // False when the thread cannot be started.
    bool Run(void* (*work)(void*), void* argument) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstack(&attributes, memory_, size_);
        pthread_t thread{};
        const int error = pthread_create(&thread, &attributes, work, argument);
        pthread_attr_destroy(&attributes);
        return error == 0 && pthread_join(thread, nullptr) == 0;
    }

    size_t used() const {
        const auto* deepest =
            std::find_if(memory_, memory_ + size_, [](unsigned char c) { return c != kPaint; });
        return static_cast<size_t>(memory_ + size_ - deepest);
    }

  private:
    static constexpr unsigned char kPaint = 0xA5;
    const size_t size_;
    unsigned char* const memory_;
};

// The sanitizers need more than the library does.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kSmallStack = 1024 * 1024;
#else
constexpr size_t kSmallStack = 64 * 1024;
#endif

TEST_F(HostTest, WithASmallStackCanSetAndAskTheDaemon) {
    struct Answers {
        bool set = false;
        int query = -1;
    } answers;
    PaintedThread thread(kSmallStack);
    ASSERT_TRUE(thread.Run(
        [](void* argument) -> void* {
            auto& told = *static_cast<Answers*>(argument);
            _velk_request own{};
            told.set = AddressCanBeSet("10.1.2.3");
            told.query = QuerySsid(own);
            return nullptr;
        },
        &answers));
    EXPECT_TRUE(answers.set);
    EXPECT_EQ(answers.query, 0);
    printf("stack used, the test kit's part included: %zu of %zu bytes\n", thread.used(),
           kSmallStack);
}

// ---- signals

std::atomic<int> alarms = 0;

// The handler stays: a signal may be on its way when its timer is stopped.
void CountAlarms(int flags) {
    alarms = 0;
    struct sigaction action {};
    action.sa_handler = [](int) { ++alarms; };
    action.sa_flags = flags;
    sigaction(SIGALRM, &action, nullptr);
}

// SIGALRM comes all the time while it lives.
class AlarmStorm {
  public:
    explicit AlarmStorm(int flags) {
        CountAlarms(flags);
        Every(500);
    }
    ~AlarmStorm() { Every(0); }
    AlarmStorm(const AlarmStorm&) = delete;
    AlarmStorm& operator=(const AlarmStorm&) = delete;

  private:
    static void Every(suseconds_t microseconds) {
        const itimerval timer{{0, microseconds}, {0, microseconds}};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
};

TEST_F(HostTest, WithSignalsArrivingCanSet) {
    for (const int flags : {0, SA_RESTART}) {
        const AlarmStorm storm(flags);
        for (const char* address : {"10.1.2.3", "10.1.2.4", "10.1.2.5"}) {
            EXPECT_TRUE(AddressCanBeSet(address)) << flags;
        }
        EXPECT_GT(alarms, 3) << "too calm";
    }
    EXPECT_THAT(libc().Logs(), testing::Not(Contains(testing::HasSubstr("Interrupted"))));
}

// The wait for the daemon is the one thing that a signal ends. Nothing is changed or left behind,
// and the same query can be made again.
TEST(SignalTest, AQueryThatASignalInterruptsIsAFailure) {
    LibcRecorder::Get().Reset();
    testkit::EmptyDevice();
    testkit::FakeDaemon daemon;
    daemon.StaySilent();
    for (const int flags : {0, SA_RESTART}) {
        CountAlarms(flags);
        LibcRecorder::Get().OnCall(testkit::Call::kSelect, [](const testkit::Event&) {
            const itimerval soon{{0, 20 * 1000}, {0, 20 * 1000}};
            setitimer(ITIMER_REAL, &soon, nullptr);
        });
        LibcRecorder::Get().ForgetEvents();
        _velk_request response{};
        EXPECT_EQ(QuerySsid(response), -1);
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        EXPECT_THAT(LibcRecorder::Get().Logs(),
                    Contains("RecvWlanResponseMessage select errno=4:Interrupted system call"));
        EXPECT_FALSE(testkit::Exists("/tmp/WlanAplFromWlanSock"));
        EXPECT_FALSE(testkit::Exists("/dev/shm/sem.WlanAplRecvSem"));
    }
    daemon.Stop();
    LibcRecorder::Get().Reset();
}

}  // namespace
}  // namespace fault
