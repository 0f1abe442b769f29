// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// masking.h - the mask of secrets in output, and whether data bytes are shown or masked.
#ifndef VELKCTL_TEXT_MASKING_H_
#define VELKCTL_TEXT_MASKING_H_

#include <string_view>

#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Shown in place of a secret.
inline constexpr std::string_view kMask = "********";

// True if kMask is shown in place of the data bytes: they are a secret that may not be shown. Zeros
// are never masked, so that a missing secret is recognisable.
bool IsMasked(bool is_secret, bool show_secrets, const Data& data);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_MASKING_H_
