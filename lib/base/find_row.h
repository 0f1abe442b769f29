// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// find_row.h - looks a row of a table up.
#ifndef VELK_BASE_FIND_ROW_H_
#define VELK_BASE_FIND_ROW_H_

#include <functional>
#include <iterator>

namespace velk {

// Returns the first row with this value of the member; null if none. It is inlined, because a call
// for each table makes the library larger.
template <typename Rows, typename Id, typename Member>
[[gnu::always_inline]] inline auto FindRow(const Rows& rows, const Id& id, Member member)
    -> decltype(&*std::begin(rows)) {
    for (const auto& row : rows) {
        if (std::invoke(member, row) == id) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace velk

#endif  // VELK_BASE_FIND_ROW_H_
