// find_row.h - looks a row of a table up.
#ifndef VELK_BASE_FIND_ROW_H_
#define VELK_BASE_FIND_ROW_H_

#include <algorithm>
#include <ranges>

namespace velk {

// Returns the first row with this value of the member; nullptr if none.
template <typename Rows, typename Id, typename Member>
auto FindRow(const Rows& rows, const Id& id, Member member) {
    const auto row = std::ranges::find(rows, id, member);
    return row == std::ranges::end(rows) ? nullptr : &*row;
}

}  // namespace velk

#endif  // VELK_BASE_FIND_ROW_H_
