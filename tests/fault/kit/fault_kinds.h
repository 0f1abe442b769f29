// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fault_kinds.h - the kinds of calls that can be made to fail.
#ifndef TESTS_FAULT_KIT_FAULT_KINDS_H_
#define TESTS_FAULT_KIT_FAULT_KINDS_H_

#include <array>
#include <cerrno>
#include <optional>
#include <string>

#include "support/libc_recorder.h"

namespace fault {

struct Kind {
    const char* name;
    std::optional<testkit::Call> call;  // nothing for an allocation
    testkit::Outcome answer;            // a plausible failure of such a call
};

inline const std::array kKinds{
    Kind{"allocation", std::nullopt, testkit::Fail(ENOMEM)},
    Kind{"open", testkit::Call::kOpen, testkit::Fail(EMFILE)},
    Kind{"read", testkit::Call::kRead, testkit::Fail(EIO)},
    Kind{"write", testkit::Call::kWrite, testkit::Fail(ENOSPC)},
    Kind{"close", testkit::Call::kClose, testkit::Fail(EIO)},
    Kind{"unlink", testkit::Call::kUnlink, testkit::Fail(EPERM)},
    Kind{"fchmod", testkit::Call::kFchmod, testkit::Fail(EPERM)},
    Kind{"flock", testkit::Call::kFlock, testkit::Fail(ENOLCK)},
    Kind{"socket", testkit::Call::kSocket, testkit::Fail(EMFILE)},
    Kind{"ioctl", testkit::Call::kIoctl, testkit::Fail(ENODEV)},
    Kind{"connect", testkit::Call::kConnect, testkit::Fail(ECONNREFUSED)},
    Kind{"bind", testkit::Call::kBind, testkit::Fail(EADDRINUSE)},
    Kind{"send", testkit::Call::kSendto, testkit::Fail(EAGAIN)},
    Kind{"select", testkit::Call::kSelect, testkit::Fail(ENOMEM)},
    Kind{"receive", testkit::Call::kRecvfrom, testkit::Fail(EAGAIN)},
    Kind{"sem_open", testkit::Call::kSemOpen, testkit::Fail(EMFILE)},
    Kind{"sem_post", testkit::Call::kSemPost, testkit::Fail(EOVERFLOW)},
    Kind{"sem_close", testkit::Call::kSemClose, testkit::Fail(EINVAL)},
    Kind{"sem_unlink", testkit::Call::kSemUnlink, testkit::Fail(EACCES)},
    Kind{"system", testkit::Call::kSystem, testkit::Fail(EAGAIN)},
    // system(3) returns this if it cannot start a process or a shell: the status of a shell that
    // could not run the line.
    Kind{"fork or exec", testkit::Call::kSystem, testkit::Return(127 << 8)},
};

struct Fault {
    Kind kind;
    int number;  // the number of the call, from 1
    testkit::Reach reach;
};

inline std::string NameOf(const Fault& fault) {
    return std::string(fault.kind.name) + " " + std::to_string(fault.number) +
           (fault.reach == testkit::Reach::kAllFrom ? " and all later" : " alone");
}

}  // namespace fault

#endif  // TESTS_FAULT_KIT_FAULT_KINDS_H_
