// command_rows_test.cpp - each set command must have rows in the tables of the fault and fuzz
// rings.
#include <algorithm>

#include <gtest/gtest.h>

#include "fault/kit/requests.h"
#include "fuzz/kit/daemon_record.h"
#include "fuzz/kit/edit_rows.h"
#include "lib/entry/dispatch_tables.h"

namespace {

bool IsIn(const auto& rows, uint32_t id) {
    return std::ranges::any_of(rows, [&](const auto& row) { return row.id == id; });
}

// The link speed is set by a tool: no file and no record holds it.
bool IsSetByATool(uint32_t id) {
    return id == VELK_CMD_LINK_SPEED;
}

TEST(CommandRowsTest, EachSetHasDataInTheFaultRing) {
    for (const velk::CommandEntry& set : velk::kSetTable) {
        EXPECT_TRUE(fault::HasData(set.command_id)) << "add data for the set of " << set.command_id
                                                    << " to kData in tests/fault/kit/requests.cpp";
    }
}

TEST(CommandRowsTest, EachSetHasARowInTheFuzzRing) {
    for (const velk::CommandEntry& set : velk::kSetTable) {
        const uint32_t id = set.command_id;
        EXPECT_TRUE(IsIn(fuzz::kEditRows, id) || IsIn(fuzz::kRecordRows, id) || IsSetByATool(id))
            << "add a row for the set of " << id
            << " to kEditRows in tests/fuzz/kit/edit_rows.cpp if it edits a file, or to "
               "kRecordRows in tests/fuzz/kit/daemon_record.cpp if the wireless daemon holds it";
    }
}

}  // namespace
