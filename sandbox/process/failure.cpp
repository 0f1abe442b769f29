// failure.cpp - why there is no device: one plain line.
#include "sandbox/process/failure.h"

#include <cstring>

namespace sandbox {

void Fail(const std::string& what, int error) {
    throw Failure(what + ": " + strerror(error));
}

}  // namespace sandbox
