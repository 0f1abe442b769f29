// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// data_of.h - the data bytes of a text, as velkctl gives them to the library.
#ifndef TESTS_SUPPORT_DATA_OF_H_
#define TESTS_SUPPORT_DATA_OF_H_

#include <string_view>

#include "velkctl/text/data_bytes.h"

namespace testkit {

inline velkctl::Data DataOf(std::string_view text) {
    velkctl::Data data{};
    (void)text.copy(data.data(), data.size());
    return data;
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_DATA_OF_H_
