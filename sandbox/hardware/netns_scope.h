// netns_scope.h - a stay in another network namespace.
#ifndef SANDBOX_HARDWARE_NETNS_SCOPE_H_
#define SANDBOX_HARDWARE_NETNS_SCOPE_H_

#include "lib/base/unique_fd.h"

namespace sandbox {

// Makes a network namespace, which lasts as long as somebody holds or uses it. Throws Failure.
velk::UniqueFd MakeNetwork();

// The calling process is in the network until the visit ends. Throws Failure.
class NetworkVisit {
  public:
    explicit NetworkVisit(const velk::UniqueFd& network);
    NetworkVisit(const NetworkVisit&) = delete;
    NetworkVisit& operator=(const NetworkVisit&) = delete;
    ~NetworkVisit();

  private:
    velk::UniqueFd home_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_NETNS_SCOPE_H_
