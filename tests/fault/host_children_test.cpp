// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Hosts that handle their children in their own way, or cannot have any.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <vector>

#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include "fault/kit/host.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::LibcRecorder;

TEST_F(HostTest, AHostThatIgnoresItsChildrenCanSet) {
    EXPECT_TRUE(InAHost([] {
        (void)signal(SIGCHLD, SIG_IGN);
        return AddressCanBeSet("10.1.2.3");
    }));
    EXPECT_THAT(testkit::ReadFile(kInterfacesFile), testing::HasSubstr("10.1.2.3"));
}

// If the host ignores its children, the exit status of a shell is lost: it seems not to have run.
TEST_F(HostTest, AHostThatIgnoresItsChildrenCannotUseTools) {
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

// Makes these system calls of the process fail from now on.
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

// system(3) reports a process that cannot be started like a command that failed, and the library
// does not notice. The edit is not made. Its copy remains until the next edit replaces it.
TEST_F(HostTest, ASetWithoutAFreeProcessChangesNothingAndReturnsSuccess) {
    const Files before = ReadTargets();
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return Refuse(kStartsOfProcesses, EAGAIN) && RequestAddress(VELK_SET, "10.1.2.3", own) == 0;
    }));
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_THAT(RemainingFiles(), testing::ElementsAre(kInterfacesCopy));
    EXPECT_TRUE(AddressCanBeSet("10.1.2.3"));
}

TEST_F(HostTest, ASetWithoutAShellChangesNothingAndReturnsSuccess) {
    const Files before = ReadTargets();
    EXPECT_TRUE(InAHost([] {
        _velk_request own{};
        return Refuse({SYS_execve}, ENOENT) && RequestAddress(VELK_SET, "10.1.2.3", own) == 0;
    }));
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_THAT(RemainingFiles(), testing::ElementsAre(kInterfacesCopy));
    EXPECT_TRUE(AddressCanBeSet("10.1.2.3"));
}

}  // namespace
}  // namespace fault
