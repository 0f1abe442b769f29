// fault_kinds.h - the kinds of calls that can be made to fail.
#ifndef TESTS_FAULT_FAULT_KINDS_H_
#define TESTS_FAULT_FAULT_KINDS_H_

#include <array>
#include <cerrno>
#include <optional>
#include <string>

#include "support/libc_recorder.h"

namespace fault {

struct Kind {
    const char* name;
    std::optional<testkit::Call> call;  // nothing: an allocation
    int error;                          // what such a call plausibly fails with
};

inline constexpr std::array kKinds{
    Kind{"allocation", std::nullopt, ENOMEM},
    Kind{"open", testkit::Call::kOpen, EMFILE},
    Kind{"read", testkit::Call::kRead, EIO},
    Kind{"write", testkit::Call::kWrite, ENOSPC},
    Kind{"close", testkit::Call::kClose, EIO},
    Kind{"unlink", testkit::Call::kUnlink, EPERM},
    Kind{"fchmod", testkit::Call::kFchmod, EPERM},
    Kind{"flock", testkit::Call::kFlock, ENOLCK},
    Kind{"socket", testkit::Call::kSocket, EMFILE},
    Kind{"ioctl", testkit::Call::kIoctl, ENODEV},
    Kind{"connect", testkit::Call::kConnect, ECONNREFUSED},
    Kind{"bind", testkit::Call::kBind, EADDRINUSE},
    Kind{"send", testkit::Call::kSendto, EAGAIN},
    Kind{"select", testkit::Call::kSelect, ENOMEM},
    Kind{"receive", testkit::Call::kRecvfrom, EAGAIN},
    Kind{"sem_open", testkit::Call::kSemOpen, EMFILE},
    Kind{"sem_post", testkit::Call::kSemPost, EOVERFLOW},
    Kind{"sem_close", testkit::Call::kSemClose, EINVAL},
    Kind{"sem_unlink", testkit::Call::kSemUnlink, EACCES},
    Kind{"system", testkit::Call::kSystem, EAGAIN},
};

struct Fault {
    Kind kind;
    int number;  // of the call, from 1
    testkit::Reach reach;
};

inline std::string NameOf(const Fault& fault) {
    return std::string(fault.kind.name) + " " + std::to_string(fault.number) +
           (fault.reach == testkit::Reach::kAllFrom ? " and all later" : " alone");
}

}  // namespace fault

#endif  // TESTS_FAULT_FAULT_KINDS_H_
