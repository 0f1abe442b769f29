// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// masking.cpp - the mask of secrets in output, and whether data bytes are shown or masked.
#include "velkctl/text/masking.h"

namespace velkctl {

bool IsMasked(bool is_secret, bool show_secrets, const Data& data) {
    return is_secret && !show_secrets && data != Data{};
}

}  // namespace velkctl
