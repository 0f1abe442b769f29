// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// refused_namespaces.h - explains why the kernel refuses private namespaces.
#ifndef SANDBOX_DEVICE_REFUSED_NAMESPACES_H_
#define SANDBOX_DEVICE_REFUSED_NAMESPACES_H_

#include <sys/types.h>

namespace sandbox {

// Throws a Failure with the likely cause and a next step for `user` if `error`, an errno, is a
// refusal.
void ThrowIfRefused(int error, uid_t user);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_REFUSED_NAMESPACES_H_
