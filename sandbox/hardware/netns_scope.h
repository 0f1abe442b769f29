// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// netns_scope.h - enters a network namespace until the end of a scope.
#ifndef SANDBOX_HARDWARE_NETNS_SCOPE_H_
#define SANDBOX_HARDWARE_NETNS_SCOPE_H_

#include "lib/base/unique_fd.h"

namespace sandbox {

// Makes a network namespace. It exists while a descriptor or a process refers to it. Throws
// Failure.
velk::UniqueFd MakeNetwork();

// Keeps the calling process in the network namespace until the end of the scope. Throws Failure.
class NetnsScope {
  public:
    explicit NetnsScope(const velk::UniqueFd& network);
    NetnsScope(const NetnsScope&) = delete;
    NetnsScope& operator=(const NetnsScope&) = delete;
    ~NetnsScope();

  private:
    velk::UniqueFd home_;
};

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_NETNS_SCOPE_H_
