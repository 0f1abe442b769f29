// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unified_diff.cpp - the differences of two texts, in the form that patch(1) takes.
#include "velkctl/text/unified_diff.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace velkctl {
namespace {

using Lines = std::vector<std::string_view>;

constexpr size_t kContext = 3;
// The size of the table that finds the longest common lines.
constexpr size_t kMostCells = 4'000'000;
constexpr std::string_view kNoNewline = "\\ No newline at end of file";

// A line of the result: ' ' in both texts, '-' only in the first, '+' only in the second.
struct Row {
    char mark;
    std::string_view line;
};

// Returns the lines with their newlines.
Lines LinesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

// The lengths of the longest common lines of the ends of both texts, from each pair of lines on.
class CommonLengths {
  public:
    CommonLengths(const Lines& before, const Lines& after)
        : width_(after.size() + 1), cells_((before.size() + 1) * width_) {
        for (size_t i = before.size(); i-- > 0;) {
            for (size_t k = after.size(); k-- > 0;) {
                cells_[i * width_ + k] = before[i] == after[k]
                                             ? At(i + 1, k + 1) + 1
                                             : std::max(At(i + 1, k), At(i, k + 1));
            }
        }
    }
    uint32_t At(size_t i, size_t k) const { return cells_[i * width_ + k]; }

  private:
    const size_t width_;
    std::vector<uint32_t> cells_;
};

void AddAll(std::vector<Row>& rows, char mark, const Lines& lines, size_t first) {
    for (size_t i = first; i < lines.size(); ++i) {
        rows.push_back({mark, lines[i]});
    }
}

// Adds the rows of the parts between the equal lines at the beginnings and ends of the texts.
void AddMiddle(std::vector<Row>& rows, const Lines& before, const Lines& after) {
    size_t i = 0;
    size_t k = 0;
    if (after.empty() || before.size() <= kMostCells / after.size()) {
        const CommonLengths common(before, after);
        while (i < before.size() && k < after.size()) {
            if (before[i] == after[k]) {
                rows.push_back({' ', before[i]});
                ++i;
                ++k;
            } else if (common.At(i + 1, k) >= common.At(i, k + 1)) {
                rows.push_back({'-', before[i++]});
            } else {
                rows.push_back({'+', after[k++]});
            }
        }
    }
    AddAll(rows, '-', before, i);
    AddAll(rows, '+', after, k);
}

std::vector<Row> RowsOf(const Lines& before, const Lines& after) {
    const auto first = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const size_t start = static_cast<size_t>(first.first - before.begin());
    size_t end = 0;
    while (end < std::min(before.size(), after.size()) - start &&
           before[before.size() - 1 - end] == after[after.size() - 1 - end]) {
        ++end;
    }
    const auto length = static_cast<std::ptrdiff_t>(end);
    std::vector<Row> rows;
    std::for_each(before.begin(), first.first, [&](std::string_view line) {
        rows.push_back({' ', line});
    });
    AddMiddle(rows, Lines(first.first, before.end() - length),
              Lines(first.second, after.end() - length));
    AddAll(rows, ' ', before, before.size() - end);
    return rows;
}

// "12,3", or "12" for one line. An empty piece is named by the line before it.
std::string Range(size_t lines_before, size_t count) {
    const size_t first = count == 0 ? lines_before : lines_before + 1;
    std::string range = std::to_string(first);
    if (count != 1) {
        range.append(",").append(std::to_string(count));
    }
    return range;
}

// Counts the rows of one side.
size_t CountOf(const std::vector<Row>& rows, size_t from, size_t to, char mark) {
    size_t count = 0;
    for (size_t i = from; i < to; ++i) {
        count += rows[i].mark == ' ' || rows[i].mark == mark ? 1U : 0U;
    }
    return count;
}

void AddPiece(std::vector<std::string>& diff, const std::vector<Row>& rows, size_t from,
              size_t to) {
    std::string head = "@@ -";
    head.append(Range(CountOf(rows, 0, from, '-'), CountOf(rows, from, to, '-'))).append(" +");
    head.append(Range(CountOf(rows, 0, from, '+'), CountOf(rows, from, to, '+'))).append(" @@");
    diff.push_back(head);
    for (size_t i = from; i < to; ++i) {
        const std::string_view line = rows[i].line;
        const bool is_whole = line.ends_with('\n');
        std::string shown(1, rows[i].mark);
        shown.append(line.substr(0, line.size() - (is_whole ? 1 : 0)));
        diff.push_back(std::move(shown));
        if (!is_whole) {
            diff.emplace_back(kNoNewline);
        }
    }
}

size_t NextChange(const std::vector<Row>& rows, size_t from) {
    while (from < rows.size() && rows[from].mark == ' ') {
        ++from;
    }
    return from;
}

// Returns the end of the changes that are near enough to each other for one piece.
size_t EndOfChanges(const std::vector<Row>& rows, size_t change) {
    size_t end = change;
    while (change < rows.size() && change <= end + 2 * kContext) {
        end = change + 1;
        change = NextChange(rows, end);
    }
    return end;
}

}  // namespace

std::vector<std::string> UnifiedDiff(const DiffSide& before, const DiffSide& after) {
    if (before.text == after.text) {
        return {};
    }
    const std::vector<Row> rows = RowsOf(LinesOf(before.text), LinesOf(after.text));
    std::vector<std::string> diff{"--- " + before.name, "+++ " + after.name};
    for (size_t change = NextChange(rows, 0); change < rows.size();) {
        const size_t end = EndOfChanges(rows, change);
        const size_t from = change - std::min(change, kContext);
        AddPiece(diff, rows, from, std::min(rows.size(), end + kContext));
        change = NextChange(rows, end);
    }
    return diff;
}

}  // namespace velkctl
