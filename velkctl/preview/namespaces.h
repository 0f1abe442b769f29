// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// namespaces.h - the namespaces of a trial, and the rights of its process.
#ifndef VELKCTL_PREVIEW_NAMESPACES_H_
#define VELKCTL_PREVIEW_NAMESPACES_H_

#include <string>

namespace velkctl {

// Moves the process to mounts of its own, and its next child to processes of its own. An ordinary
// user gets a user namespace for that. Returns 0 or errno.
int EnterNamespaces();

// Gives up all rights but those of root on files, also for programs that are started. Returns 0 or
// errno.
int GiveUpRights();

// Returns the advice for a user whom the kernel refused namespaces with this errno.
std::string NamespaceAdvice(int error);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_NAMESPACES_H_
