// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The entry point, through libvelk.so as a management program calls it.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/file.h>

#include "support/allocations.h"
#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testkit::AllocationFault;
using testkit::Call;
using testkit::Data;
using testkit::Fail;
using testkit::kLockFile;
using testkit::kResolverFile;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

const std::string kZeros(VELK_DATA_SIZE, '\0');

class DispatchTest : public testkit::DeviceTest {
  protected:
    void ExpectHeader(const std::string& interface, uint32_t type, uint32_t id) {
        char expected[VELK_INTERFACE_SIZE] = {};
        interface.copy(expected, sizeof(expected));
        EXPECT_EQ(memcmp(response.interface, expected, sizeof(expected)), 0);
        EXPECT_EQ(response.command_type, type);
        EXPECT_EQ(response.command_id, id);
    }
};

TEST_F(DispatchTest, ANullRequestIsRefused) {
    const _velk_request before = response;
    EXPECT_EQ(execute_velk_command(nullptr, &response), -4);
    EXPECT_THAT(libc().Logs(), ElementsAre("paramater"));
    EXPECT_EQ(memcmp(&before, &response, sizeof(response)), 0) << "nothing is written";
}

TEST_F(DispatchTest, ANullResponseIsRefused) {
    const _velk_request request = MakeRequest(VELK_GET, 108, "eth0");
    EXPECT_EQ(execute_velk_command(&request, nullptr), -4);
    EXPECT_EQ(execute_velk_command(nullptr, nullptr), -4);
    EXPECT_THAT(libc().Logs(), ElementsAre("paramater", "paramater"));
}

TEST_F(DispatchTest, AnUnknownTypeIsLoggedAndTakesNoLock) {
    EXPECT_EQ(Execute(0, 108, "eth0"), -4);
    EXPECT_EQ(Execute(4, 108, "eth0"), -4);
    EXPECT_EQ(Execute(0xFFFFFFFF, 108, "eth0"), -4);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("command_type = 0", "command_type = 4", "command_type = -1"));
    EXPECT_FALSE(testkit::Exists(kLockFile));
    ExpectHeader("eth0", 0xFFFFFFFF, 108);
    EXPECT_EQ(Data(response), kZeros);
}

TEST_F(DispatchTest, AnUnknownIdIsRefusedWithoutALogLine) {
    EXPECT_EQ(Execute(VELK_GET, 8, "eth0"), -4);
    EXPECT_THAT(libc().Logs(), IsEmpty());
    ExpectHeader("eth0", VELK_GET, 8);
    EXPECT_EQ(Data(response), kZeros);
}

TEST_F(DispatchTest, AnInterfaceThatTheCommandDoesNotTakeIsRefused) {
    for (const char* interface : {"", "eth2", "ETH0", "eth0 ", "eth", "eth00", "eth0:1", " eth0"}) {
        SCOPED_TRACE(interface);
        libc().Reset();
        EXPECT_EQ(Execute(VELK_GET, 108, interface), -4);
        EXPECT_THAT(libc().Logs(), ElementsAre("paramater matching"));
        ExpectHeader(interface, VELK_GET, 108);
        EXPECT_EQ(Data(response), kZeros);
    }
}

TEST_F(DispatchTest, AGetReachesItsHandlerWithoutTheLock) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    for (const char* interface : {"eth0", "eth1"}) {
        EXPECT_EQ(Execute(VELK_GET, 108, interface), 0);
        EXPECT_EQ(Data(response, 10), std::string("10.0.0.1\0\0", 10));
        ExpectHeader(interface, VELK_GET, 108);
    }
    EXPECT_FALSE(testkit::Exists(kLockFile));
}

TEST_F(DispatchTest, ASetReachesItsHandlerUnderTheLock) {
    bool locked = false;
    libc().OnCall(Call::kWrite, [&](const testkit::Event&) {
        const int fd = open(kLockFile, O_RDWR | O_CLOEXEC);
        locked = flock(fd, LOCK_EX | LOCK_NB) == -1;
        close(fd);
    });
    EXPECT_EQ(Execute(VELK_SET, 108, "eth1", "10.0.0.2"), 0);
    EXPECT_TRUE(locked);
    EXPECT_EQ(ReadFile(kResolverFile), "nameserver 10.0.0.2\n");
    ExpectHeader("eth1", VELK_SET, 108);
    EXPECT_EQ(Data(response), kZeros) << "a set answers with no data";
}

TEST_F(DispatchTest, AHeldLockIsAnsweredAtOnceAndNothingIsDone) {
    const int lock = VkLibLock();
    for (const uint32_t type : {VELK_SET, VELK_RESTART}) {
        libc().Reset();
        EXPECT_EQ(Execute(type, 108, "eth0", "10.0.0.2"), -3);
        EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible", "lockking"));
        ExpectHeader("eth0", type, 108);
        EXPECT_EQ(Data(response), kZeros);
    }
    EXPECT_FALSE(testkit::Exists(kResolverFile));
    EXPECT_EQ(libc().Events(Call::kFlock).size(), 1U) << "no unlock of a lock that was not taken";
    VkLibUnLock(lock);
}

TEST_F(DispatchTest, AGetRunsWhileAnotherHoldsTheLock) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    const int lock = VkLibLock();
    EXPECT_EQ(Execute(VELK_GET, 108, "eth0"), 0);
    VkLibUnLock(lock);
}

TEST_F(DispatchTest, AnUnlockableLockFileIsAFailure) {
    libc().Script(Call::kOpen, {Fail(EACCES), Fail(EACCES)});
    EXPECT_EQ(Execute(VELK_SET, 108, "eth0", "10.0.0.2"), -1);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("VkLibLock open2 errno=13:Permission denied", "lockking"));
    EXPECT_FALSE(testkit::Exists(kResolverFile));
}

TEST_F(DispatchTest, TheLockIsReleasedOnEveryPath) {
    EXPECT_EQ(Execute(VELK_SET, 399, "eth0"), -4);      // unknown id
    EXPECT_EQ(Execute(VELK_SET, 108, "eth2"), -4);      // interface not allowed
    EXPECT_EQ(Execute(VELK_RESTART, 1, ""), -4);        // interface not allowed
    EXPECT_EQ(Execute(VELK_SET, 108, "eth0", "a"), 0);  // done
    ASSERT_EQ(system("rm /etc/resolv.dnsmasq.conf; mkdir /etc/resolv.dnsmasq.conf"), 0);
    EXPECT_EQ(Execute(VELK_SET, 108, "eth0", "a"), -1);  // failed
    const std::vector<testkit::Event> calls = libc().Events(Call::kFlock);
    ASSERT_EQ(calls.size(), 10U);
    for (size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].number, i % 2 == 0 ? LOCK_EX | LOCK_NB : LOCK_UN);
    }
}

TEST_F(DispatchTest, TheResponseIsClearedFirst) {
    _velk_request request = MakeRequest(VELK_GET, 399, "eth0");
    memset(request.interface + 5, 'x', 11);  // after the NUL
    EXPECT_EQ(Execute(request), -4);
    EXPECT_EQ(std::string(response.interface, 16), std::string("eth0") + std::string(12, '\0'));
    EXPECT_EQ(Data(response), kZeros);
}

TEST_F(DispatchTest, AnInterfaceWithoutANulIsHandledWithinItsField) {
    _velk_request request = MakeRequest(0x78787878, 0x78787878, "eth0eth0eth0eth0");
    memset(request.data, 'x', sizeof(request.data));
    EXPECT_EQ(Execute(request), -4);
    EXPECT_EQ(std::string(response.interface, 16), std::string("eth0eth0eth0eth\0", 16));
    request.command_type = VELK_GET;
    request.command_id = VELK_CMD_DNS;
    libc().Reset();
    EXPECT_EQ(Execute(request), -4);
    EXPECT_THAT(libc().Logs(), ElementsAre("paramater matching"));
}

TEST_F(DispatchTest, DataWithoutANulIsHandledWithinItsField) {
    _velk_request request = MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0");
    memset(request.data, 'x', sizeof(request.data));
    EXPECT_EQ(Execute(request), 0);
    EXPECT_EQ(ReadFile(kResolverFile),
              "nameserver xxxxxxxxxxxxxxxx\n"
              "nameserver xxxxxxxxxxxxxxxx\n"
              "nameserver xxxxxxxxxxxxxxxx\n");
}

TEST_F(DispatchTest, ARequestThatIsItsOwnResponseIsRefused) {
    response = MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0", "10.0.0.2");
    EXPECT_EQ(execute_velk_command(&response, &response), -4);
    EXPECT_FALSE(testkit::Exists(kResolverFile)) << "clearing the response cleared the request";
}

TEST_F(DispatchTest, AGetOutOfMemoryIsAFailure) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    const _velk_request request = MakeRequest(VELK_GET, VELK_CMD_DNS, "eth0");
    {
        const AllocationFault fault(1);
        EXPECT_EQ(execute_velk_command(&request, &response), -1);
    }
    EXPECT_THAT(libc().Logs(), ElementsAre("execute_velk_command exception std::bad_alloc"));
    EXPECT_EQ(Data(response), kZeros);
}

TEST_F(DispatchTest, ASetOutOfMemoryReleasesTheLockAndLeavesTheFile) {
    WriteFile(kResolverFile, "nameserver 10.0.0.1\n");
    const _velk_request request = MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0", "192.168.100.100");
    {
        const AllocationFault fault(1);
        EXPECT_EQ(execute_velk_command(&request, &response), -1);
    }
    EXPECT_THAT(libc().Logs(), ElementsAre("execute_velk_command exception std::bad_alloc"));
    EXPECT_EQ(libc().Events(Call::kFlock).back().number, LOCK_UN);
    EXPECT_EQ(ReadFile(kResolverFile), "nameserver 10.0.0.1\n");
}

// A command may throw anything: here the test's replacement of the system call throws.
TEST_F(DispatchTest, AnythingThrownIsAFailureAndReleasesTheLock) {
    libc().OnCall(Call::kWrite, [](const testkit::Event&) { throw 42; });
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_DNS, "eth0", "10.0.0.2"), -1);
    EXPECT_EQ(libc().Events(Call::kFlock).back().number, LOCK_UN);
    EXPECT_EQ(libc().Logs().back(), "execute_velk_command exception");
}

// Without this, a pending cancellation would end the thread at the next system call.
TEST_F(DispatchTest, ACancelledThreadFinishesItsCall) {
    struct Outcome {
        int set = 99, get = 99, state_afterwards = 99;
    };
    const auto call_while_cancelled = [](void* argument) -> void* {
        auto* outcome = static_cast<Outcome*>(argument);
        pthread_cancel(pthread_self());
        _velk_request answer;
        const _velk_request set = MakeRequest(VELK_SET, VELK_CMD_DNS, "eth0", "10.0.0.2");
        outcome->set = execute_velk_command(&set, &answer);
        const _velk_request get = MakeRequest(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth0");
        outcome->get = execute_velk_command(&get, &answer);
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &outcome->state_afterwards);
        return nullptr;
    };
    Outcome outcome;
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, call_while_cancelled, &outcome), 0);
    pthread_join(thread, nullptr);
    EXPECT_EQ(outcome.set, 0);
    EXPECT_EQ(outcome.get, 0);
    EXPECT_EQ(outcome.state_afterwards, PTHREAD_CANCEL_ENABLE) << "as the caller had it";
    EXPECT_EQ(ReadFile(kResolverFile), "nameserver 10.0.0.2\n");
}

TEST_F(DispatchTest, NoDescriptorIsLeakedOver10000Calls) {
    const std::vector<int> before = testkit::OpenDescriptors();
    for (int i = 0; i < 10000; ++i) {
        const auto type = static_cast<uint32_t>(i % 4);
        Execute(type, i % 3 == 0 ? 399 : VELK_CMD_DNS, i % 5 == 0 ? "eth2" : "eth0", "10.0.0.1");
        libc().Reset();
    }
    EXPECT_EQ(testkit::OpenDescriptors(), before);
}

// One command as a management program may call it.
struct Command {
    uint32_t type;
    uint32_t id;
    std::vector<std::string> interfaces;
};

const std::vector<Command> kCommands = {{VELK_RESTART, 1, {"eth0", "eth1"}},
                                        {VELK_GET, 2, {""}},
                                        {VELK_GET, 3, {""}},
                                        {VELK_GET, 6, {""}},
                                        {VELK_GET, 7, {""}},
                                        {VELK_GET, 9, {""}},
                                        {VELK_GET, 10, {""}},
                                        {VELK_GET, 11, {""}},
                                        {VELK_GET, 101, {"eth0", "eth1"}},
                                        {VELK_GET, 201, {"eth0"}},
                                        {VELK_GET, 102, {"eth0", "eth1"}},
                                        {VELK_GET, 103, {"eth0", "eth1"}},
                                        {VELK_GET, 104, {"eth0", "eth1"}},
                                        {VELK_GET, 105, {"eth0", "eth1"}},
                                        {VELK_GET, 106, {"eth0", "eth1"}},
                                        {VELK_GET, 107, {"eth0", "eth1"}},
                                        {VELK_GET, 108, {"eth0", "eth1"}},
                                        {VELK_GET, 4, {"eth1"}},
                                        {VELK_GET, 5, {"eth1"}},
                                        {VELK_GET, 301, {"eth1"}},
                                        {VELK_GET, 318, {"eth1"}},
                                        {VELK_GET, 302, {"eth1"}},
                                        {VELK_GET, 303, {"eth1"}},
                                        {VELK_GET, 304, {"eth1"}},
                                        {VELK_GET, 305, {"eth1"}},
                                        {VELK_GET, 306, {"eth1"}},
                                        {VELK_GET, 307, {"eth1"}},
                                        {VELK_GET, 308, {"eth1"}},
                                        {VELK_GET, 309, {"eth1"}},
                                        {VELK_GET, 310, {"eth1"}},
                                        {VELK_GET, 311, {"eth1"}},
                                        {VELK_GET, 312, {"eth1"}},
                                        {VELK_GET, 314, {"eth1"}},
                                        {VELK_GET, 315, {"eth1"}},
                                        {VELK_GET, 316, {"eth1"}},
                                        {VELK_GET, 317, {"eth1"}},
                                        {VELK_SET, 2, {""}},
                                        {VELK_SET, 3, {""}},
                                        {VELK_SET, 6, {""}},
                                        {VELK_SET, 7, {""}},
                                        {VELK_SET, 9, {""}},
                                        {VELK_SET, 11, {""}},
                                        {VELK_SET, 201, {"eth0"}},
                                        {VELK_SET, 102, {"eth0", "eth1"}},
                                        {VELK_SET, 109, {"eth0"}},
                                        {VELK_SET, 103, {"eth0", "eth1"}},
                                        {VELK_SET, 104, {"eth0", "eth1"}},
                                        {VELK_SET, 105, {"eth0", "eth1"}},
                                        {VELK_SET, 106, {"eth0", "eth1"}},
                                        {VELK_SET, 107, {"eth0", "eth1"}},
                                        {VELK_SET, 108, {"eth0", "eth1"}},
                                        {VELK_SET, 318, {"eth1"}},
                                        {VELK_SET, 302, {"eth1"}},
                                        {VELK_SET, 303, {"eth1"}},
                                        {VELK_SET, 304, {"eth1"}},
                                        {VELK_SET, 306, {"eth1"}},
                                        {VELK_SET, 307, {"eth1"}},
                                        {VELK_SET, 308, {"eth1"}},
                                        {VELK_SET, 309, {"eth1"}},
                                        {VELK_SET, 310, {"eth1"}},
                                        {VELK_SET, 311, {"eth1"}},
                                        {VELK_SET, 312, {"eth1"}},
                                        {VELK_SET, 314, {"eth1"}}};

// Every id, type and interface name: the function that runs, and the log line of each refusal.
class MatrixTest : public DispatchTest {
  protected:
    static const Command* Find(uint32_t type, uint32_t id) {
        const auto found = std::find_if(
            kCommands.begin(), kCommands.end(),
            [&](const Command& command) { return command.type == type && command.id == id; });
        return found == kCommands.end() ? nullptr : &*found;
    }

    // Returns the log lines of the entry point for a request that it refuses.
    static std::vector<std::string> RefusalLogs(uint32_t type, const Command* command) {
        if (type < 1 || type > 3) {
            return {"command_type = " + std::to_string(type)};
        }
        std::vector<std::string> logs;
        if (type != VELK_GET) {
            logs.emplace_back("VkLibLock indelible");
        }
        if (command != nullptr) {
            logs.emplace_back("paramater matching");
        }
        return logs;
    }

    void Check(uint32_t type, uint32_t id, const std::string& interface) {
        const Command* command = Find(type, id);
        const bool runs = command != nullptr && std::count(command->interfaces.begin(),
                                                           command->interfaces.end(), interface);
        const int result = Execute(type, id, interface, "\2");
        ExpectHeader(interface, type, id);
        if (runs) {
            ASSERT_NE(result, -4);
            ASSERT_THAT(libc().Logs(), Not(Contains("paramater matching")));
        } else {
            ASSERT_EQ(result, -4);
            ASSERT_EQ(libc().Logs(), RefusalLogs(type, command));
            ASSERT_EQ(Data(response), kZeros);
        }
    }
};

TEST_F(MatrixTest, EveryIdTypeAndInterface) {
    WriteFile(kLockFile, "");
    for (const char* interface : {"", "eth0", "eth1", "eth2", "ETH0", "eth0 ", "wlan0"}) {
        for (uint32_t type = 0; type <= 5; ++type) {
            for (uint32_t id = 0; id <= 400; ++id) {
                SCOPED_TRACE(std::string(interface) + " " + std::to_string(type) + " " +
                             std::to_string(id));
                libc().Reset();
                const testkit::FakeShell shell;
                ASSERT_NO_FATAL_FAILURE(Check(type, id, interface));
            }
        }
    }
}

}  // namespace
