// caller.h - the user whose rights the host program has.
#ifndef VELK_BASE_CALLER_H_
#define VELK_BASE_CALLER_H_

#include <unistd.h>

namespace velk {

// True in a host whose real and effective user differ. Shells give up the effective user: what the
// library makes must be readable by the real one.
inline bool HasTwoUsers() {
    return getuid() != geteuid();
}

}  // namespace velk

#endif  // VELK_BASE_CALLER_H_
