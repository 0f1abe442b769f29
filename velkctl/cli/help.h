// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// help.h - the help texts of velkctl and of its verbs.
#ifndef VELKCTL_CLI_HELP_H_
#define VELKCTL_CLI_HELP_H_

#include <string>
#include <string_view>

#include "velkctl/cli/verbs.h"

namespace velkctl {

// Shows help if given instead of a verb or before one.
inline constexpr std::string_view kHelpVerb = "help";

// "velkctl list"
std::string CommandName(const Verb& verb);

// "velkctl list [eth0|eth1] [OPTION...]"
std::string Usage(const Verb& verb);

std::string VerbHelp(const Verb& verb);

// The help of the tool itself, with its verbs and exit statuses.
std::string ToolHelp();

}  // namespace velkctl

#endif  // VELKCTL_CLI_HELP_H_
