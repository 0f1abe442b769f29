// failure.h - why there is no device: one plain line.
#ifndef SANDBOX_PROCESS_FAILURE_H_
#define SANDBOX_PROCESS_FAILURE_H_

#include <stdexcept>
#include <string>

namespace sandbox {

class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Throws "WHAT: REASON", the reason being the text of `error`, an errno.
[[noreturn]] void Fail(const std::string& what, int error);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_FAILURE_H_
