// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_text.cpp - the value of a setting as people read it.
#include "velkctl/settings/value_text.h"

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/masking.h"

namespace velkctl {

std::string ValueText(const Setting& setting, const Data& data, bool show_secrets) {
    return IsMasked(setting.row->secret, show_secrets, data) ? std::string(kMask)
                                                             : setting.row->kind->Print(data);
}

}  // namespace velkctl
