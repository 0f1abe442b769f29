// find_row.h - looks a row of a table up.
#ifndef VELKCTL_TEXT_FIND_ROW_H_
#define VELKCTL_TEXT_FIND_ROW_H_

#include <algorithm>
#include <ranges>

namespace velkctl {

// Returns the first row with this value of the member; nullptr if none.
template <typename Rows, typename Id, typename Member>
auto FindRow(const Rows& rows, const Id& id, Member member) {
    const auto row = std::ranges::find(rows, id, member);
    return row == std::ranges::end(rows) ? nullptr : &*row;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_FIND_ROW_H_
