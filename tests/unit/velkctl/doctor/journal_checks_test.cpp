// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about changes in the journal.
#include <string>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"

namespace {

using velkctl::CheckJournal;
using velkctl::EntryState;
using velkctl::FormatFindings;

class JournalCheck : public testkit::DeviceTest {
  protected:
    // Returns the file of a change that was left in this state.
    static std::string Leave(EntryState state) {
        const velkctl::JournalLock lock(velkctl::JournalLock::Use::kAlone, 0);
        velkctl::JournalEntry entry{.state = state};
        return velkctl::EntryFile(entry).path();
    }
    static std::string IdOf(const std::string& path) { return path.substr(path.size() - 4); }
};

TEST_F(JournalCheck, SaysNothingAboutClosedChanges) {
    EXPECT_EQ(FormatFindings(CheckJournal()), "");
    (void)Leave(EntryState::kDone);
    (void)Leave(EntryState::kReverted);
    (void)Leave(EntryState::kKept);
    EXPECT_EQ(FormatFindings(CheckJournal()), "");
}

TEST_F(JournalCheck, FindsAChangeThatWasInterrupted) {
    const std::string path = Leave(EntryState::kApplying);
    (void)Leave(EntryState::kDone);
    EXPECT_EQ(FormatFindings(CheckJournal()),
              "problem: change " + IdOf(path) + " was interrupted\n  " + path +
                  ": it is neither finished nor taken back\n  fix: velkctl recover\n");
}

TEST_F(JournalCheck, FindsAChangeThatIsStuck) {
    const std::string path = Leave(EntryState::kStuck);
    EXPECT_EQ(FormatFindings(CheckJournal()),
              "problem: change " + IdOf(path) + " is taken back only in part\n  " + path +
                  ": a file or setting could not be put back\n"
                  "  fix: velkctl recover --force; to leave it as it is, velkctl recover --keep\n");
}

}  // namespace
