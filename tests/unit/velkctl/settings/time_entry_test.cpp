// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Whether a set of the time server would replace the server or a text before it.
#include "velkctl/settings/time_entry.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::IsServerFoundTooEarly;

std::string EntryWith(const std::string& server) {
    return "0 * * * * /usr/bin/ntpdate -u " + server + " > /var/libvelk/ntp.log\n";
}

TEST(TimeEntry, AServerIsFoundWhereItIs) {
    for (const char* server :
         {"10.0.0.1", "time.example", "python3", "ntp.example", "usr.example", "pool", "log"}) {
        EXPECT_FALSE(IsServerFoundTooEarly(EntryWith(server))) << server;
    }
}

TEST(TimeEntry, AServerThatIsAPartOfTheCommandIsFoundThere) {
    for (const char* server : {"ntp", "usr", "bin", "u", "d", "ntpdate", "date", "n", "0"}) {
        EXPECT_TRUE(IsServerFoundTooEarly(EntryWith(server))) << server;
    }
}

TEST(TimeEntry, AnEntryThatIsSwitchedOffCountsToo) {
    EXPECT_TRUE(IsServerFoundTooEarly("#" + EntryWith("ntp")));
}

TEST(TimeEntry, ALineWithoutAServerIsNoProblem) {
    EXPECT_FALSE(IsServerFoundTooEarly(EntryWith("")));
    EXPECT_FALSE(IsServerFoundTooEarly("0 * * * * ntpdate\n"));
    EXPECT_FALSE(IsServerFoundTooEarly("0 * * * * true\n"));
    EXPECT_FALSE(IsServerFoundTooEarly(""));
}

TEST(TimeEntry, AServerMayStickToTheClientOrEndTheLine) {
    EXPECT_FALSE(IsServerFoundTooEarly("0 * * * * ntpdate5 > log\n"));
    EXPECT_TRUE(IsServerFoundTooEarly("5 * * * * ntpdate5 > log\n"));
    EXPECT_FALSE(IsServerFoundTooEarly("0 * * * * ntpdate -u ntp\n"))
        << "the end of the line is a part of the word";
    EXPECT_TRUE(IsServerFoundTooEarly("0 * * * * ntpdate -u ntp"));
}

}  // namespace
