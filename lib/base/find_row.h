// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// find_row.h - looks a row of a table up.
#ifndef VELK_BASE_FIND_ROW_H_
#define VELK_BASE_FIND_ROW_H_

#include <algorithm>
#include <functional>
#include <iterator>

namespace velk {

// Returns the first row with this value of the member; null if none. It is inlined, because a call
// for each table makes the library larger.
template <typename Rows, typename Id, typename Member>
[[gnu::always_inline]] inline auto FindRow(const Rows& rows, const Id& id, Member member) {
    const auto row = std::find_if(std::begin(rows), std::end(rows), [&](const auto& entry) {
        return std::invoke(member, entry) == id;
    });
    return row == std::end(rows) ? nullptr : &*row;
}

}  // namespace velk

#endif  // VELK_BASE_FIND_ROW_H_
