// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/report/result_codes.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velkctl::DescribeResult;
using velkctl::ExitStatus;
using velkctl::FindResultCode;
using velkctl::ResultCodes;

constexpr std::array kAllResults{LIB_VELK_SUCCESS,    LIB_VELK_FAILURE,
                                 LIB_VELK_LOCKED,     LIB_VELK_INVALID_PARAMETER,
                                 LIB_VELK_NO_ADAPTER, LIB_VELK_WIRED_LINKED};

// Without a default: a result that is new in velk.h does not compile here until it is added, to
// this list and to the one above.
size_t PlaceInList(velk_result result) {
    switch (result) {
        case LIB_VELK_SUCCESS:
            return 0;
        case LIB_VELK_FAILURE:
            return 1;
        case LIB_VELK_LOCKED:
            return 2;
        case LIB_VELK_INVALID_PARAMETER:
            return 3;
        case LIB_VELK_NO_ADAPTER:
            return 4;
        case LIB_VELK_WIRED_LINKED:
            return 5;
    }
    return std::numeric_limits<size_t>::max();
}

TEST(ResultCodes, EveryResultOfTheLibraryHasOneRow) {
    ASSERT_EQ(ResultCodes().size(), kAllResults.size());
    for (size_t i = 0; i < kAllResults.size(); ++i) {
        EXPECT_EQ(PlaceInList(kAllResults[i]), i);
        EXPECT_EQ(ResultCodes()[i].code, kAllResults[i]);
    }
}

TEST(ResultCodes, NamesAreThoseOfTheHeader) {
    EXPECT_EQ(FindResultCode(0).name, "LIB_VELK_SUCCESS");
    EXPECT_EQ(FindResultCode(-1).name, "LIB_VELK_FAILURE");
    EXPECT_EQ(FindResultCode(-3).name, "LIB_VELK_LOCKED");
    EXPECT_EQ(FindResultCode(-4).name, "LIB_VELK_INVALID_PARAMETER");
    EXPECT_EQ(FindResultCode(-5).name, "LIB_VELK_NO_ADAPTER");
    EXPECT_EQ(FindResultCode(-6).name, "LIB_VELK_WIRED_LINKED");
}

TEST(ResultCodes, NoTwoRowsShareANameOrDescription) {
    for (const auto& row : ResultCodes()) {
        EXPECT_FALSE(row.description.empty()) << row.name;
        EXPECT_EQ(std::count_if(ResultCodes().begin(), ResultCodes().end(),
                                [&row](const auto& other) {
                                    return other.name == row.name ||
                                           other.description == row.description;
                                }),
                  1)
            << row.name;
    }
}

TEST(ResultCodes, HaveTheExitStatusesThatScriptsRelyOn) {
    const auto status_of = [](int code) { return static_cast<int>(FindResultCode(code).status); };
    EXPECT_EQ(status_of(0), 0);
    EXPECT_EQ(status_of(-1), 1);
    EXPECT_EQ(status_of(-4), 2);
    EXPECT_EQ(status_of(-3), 3);
    EXPECT_EQ(status_of(-5), 4);
    EXPECT_EQ(status_of(-6), 5);
}

TEST(ResultCodes, AnUnknownResultIsAFailure) {
    for (const int code : {1, -2, -7, 42, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(FindResultCode(code).code, code);
        EXPECT_EQ(FindResultCode(code).name, "unknown result");
        EXPECT_EQ(FindResultCode(code).status, ExitStatus::kFailed);
    }
}

TEST(DescribeResult, HasNameNumberAndDescription) {
    EXPECT_EQ(DescribeResult(0), "LIB_VELK_SUCCESS (0): done");
    EXPECT_EQ(DescribeResult(-1),
              "LIB_VELK_FAILURE (-1): file, socket, time-out or unreadable value");
    EXPECT_EQ(DescribeResult(-3), "LIB_VELK_LOCKED (-3): another program is changing settings");
    EXPECT_EQ(DescribeResult(-4),
              "LIB_VELK_INVALID_PARAMETER (-4): "
              "the library does not take this command, interface or value");
    EXPECT_EQ(DescribeResult(-5),
              "LIB_VELK_NO_ADAPTER (-5): no supported wireless adapter is attached");
    EXPECT_EQ(DescribeResult(-6),
              "LIB_VELK_WIRED_LINKED (-6): refused while the cable is in the wired port");
    EXPECT_EQ(DescribeResult(-9), "unknown result (-9): a result that velkctl does not know");
}

}  // namespace
