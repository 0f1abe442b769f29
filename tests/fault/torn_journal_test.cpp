// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Verbs of velkctl with a journal that is cut, damaged, of a later velkctl or cannot be written.
// See docs/reliability.md.
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/mounted.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/frames.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace fault {
namespace {

using testkit::kInterfacesFile;
using testkit::kJournalFolder;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::EncodeFrame;
using velkctl::EntryState;
using velkctl::ExitStatus;
using velkctl::FrameKind;
using velkctl::Invocation;
using velkctl::ReadJournal;
using velkctl::Report;

constexpr char kText[] = "iface eth0 inet static\n\taddress 10.0.0.1\n";
constexpr char kNewText[] = "iface eth0 inet static\n\taddress 10.0.0.2\n";
constexpr char kThirdText[] = "iface eth0 inet static\n\taddress 10.0.0.3\n";

struct Told {
    ExitStatus status;
    std::string output{};
    std::string error{};
};

using Verb = ExitStatus (*)(const Invocation&, Report&);

class TornJournalTest : public testkit::DeviceTest {
  protected:
    TornJournalTest() { WriteFile(kInterfacesFile, kText); }

    static Told Run(Verb verb, const Invocation& invocation = {}) {
        Report report(Report::Form::kText);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Told told{verb(invocation, report)};
        (void)fflush(stdout);
        told.output = testing::internal::GetCapturedStdout();
        told.error = testing::internal::GetCapturedStderr();
        return told;
    }
    static Told Set(const char* address) {
        return Run(velkctl::RunSet, {.words = {"eth0.address", address}});
    }
    static Told Apply(const std::string& address) {
        return Run(velkctl::RunApply, {.words = {"eth0.address=" + address}, .restart = "never"});
    }
    static Told Undo() { return Run(velkctl::RunUndo); }
    static Told Recover() { return Run(velkctl::RunRecover); }
    static Told History() { return Run(velkctl::RunHistory, {.no_pager = true}); }

    static std::string EntryPath() { return ReadJournal().entries.back().path; }
    static std::string Text() { return ReadFile(kInterfacesFile); }

    // Makes a set and returns its entry without the last state, as after a kill in the set.
    static std::string InterruptedEntry() {
        EXPECT_EQ(Set("10.0.0.2").status, ExitStatus::kDone);
        const std::string bytes = ReadFile(EntryPath());
        const std::string done = velkctl::EncodeState(EntryState::kDone);
        EXPECT_TRUE(bytes.ends_with(done));
        return bytes.substr(0, bytes.size() - done.size());
    }
    // Gives the device a journal with this entry alone, and the new text.
    static void Restore(const std::string& entry) {
        WriteFile(kInterfacesFile, kNewText);
        WriteFile(std::string(kJournalFolder) + "/000001-97gq", entry);
    }
};

// Returns the entry with one bit flipped in this byte.
std::string Damaged(std::string entry, size_t place) {
    entry[place] = static_cast<char>(static_cast<unsigned char>(entry[place]) ^ (1U << place % 8));
    return entry;
}

// The file has the new text. Before the state "applying" it was not the change that wrote it.
TEST_F(TornJournalTest, IsCutAtEachByte) {
    const std::string entry = InterruptedEntry();
    const size_t prepared = entry.find(velkctl::EncodeState(EntryState::kPrepared)) +
                            velkctl::EncodeState(EntryState::kPrepared).size();
    int removed = 0;
    int kept = 0;
    int put_back = 0;
    for (size_t length = 0; length <= entry.size(); ++length) {
        SCOPED_TRACE(length);
        Restore(entry.substr(0, length));
        EXPECT_EQ(Recover().status, ExitStatus::kDone);
        if (length < prepared) {
            EXPECT_TRUE(ReadJournal().entries.empty());
            ++removed;
        } else {
            EXPECT_EQ(ReadJournal().entries.front().decoded.entry.state, EntryState::kReverted);
        }
        // At the end of a frame nothing shows that the next one is lost.
        EXPECT_EQ(Text(), length <= prepared ? kNewText : kText);
        kept += length == prepared ? 1 : 0;
        put_back += length > prepared ? 1 : 0;
    }
    printf("| cut, interrupted set | %zu | %d | %d | %d |\n", entry.size() + 1, removed, kept,
           put_back);
}

// A state that follows a damaged frame shows that the change was begun. Nothing is removed, and
// nothing half known is put back.
TEST_F(TornJournalTest, IsDamagedAtEachByteOfAnInterruptedSet) {
    const std::string entry = InterruptedEntry();
    const std::string prepared = velkctl::EncodeState(EntryState::kPrepared);
    const size_t begun = entry.find(prepared) + prepared.size();
    int left = 0;
    for (size_t place = 0; place < entry.size(); ++place) {
        SCOPED_TRACE(place);
        const std::string damaged = Damaged(entry, place);
        Restore(damaged);
        const Told told = Recover();
        EXPECT_EQ(told.status, ExitStatus::kDone);
        if (place < begun) {
            EXPECT_EQ(told.error,
                      "velkctl: note: recover: /var/libvelk/journal/000001-97gq is left as it is\n"
                      "  damaged\n");
            EXPECT_EQ(ReadFile(EntryPath()), damaged);
            EXPECT_EQ(Text(), kNewText);
            ++left;
        } else {
            EXPECT_EQ(Text(), kText);
        }
    }
    printf("| damaged, interrupted set | %zu | 0 | %d | %zu |\n", entry.size(), left,
           entry.size() - static_cast<size_t>(left));
}

TEST_F(TornJournalTest, IsDamagedAtEachByteOfAFinishedSet) {
    const std::string interrupted = InterruptedEntry();
    const std::string entry = interrupted + velkctl::EncodeState(EntryState::kDone);
    for (size_t place = 0; place < interrupted.size(); ++place) {
        SCOPED_TRACE(place);
        const std::string damaged = Damaged(entry, place);
        Restore(damaged);
        EXPECT_EQ(Recover().status, ExitStatus::kDone);
        const Told undo = Undo();
        EXPECT_EQ(undo.status, ExitStatus::kFailed);
        EXPECT_EQ(undo.error,
                  "velkctl: undo: change 97gq cannot be taken back\n"
                  "  damaged\n"
                  "  fix: 'velkctl undo ID' takes an earlier one back\n");
        EXPECT_THAT(History().output, testing::StartsWith("97gq  damaged\n"));
        EXPECT_EQ(Text(), kNewText);
        EXPECT_EQ(ReadFile(EntryPath()), damaged);
    }
    printf("| damaged, finished set | %zu | 0 | %zu | 0 |\n", interrupted.size(),
           interrupted.size());
}

class LaterJournalTest : public TornJournalTest {
  protected:
    LaterJournalTest() {
        EXPECT_EQ(Set("10.0.0.2").status, ExitStatus::kDone);
        WriteFile(kPath, later_);
    }

    static constexpr char kPath[] = "/var/libvelk/journal/000002-tktk";
    const std::string later_ =
        EncodeFrame(FrameKind::kHeader, R"({"schema":2,"id":"tktk","time":0,"user":0})") +
        EncodeFrame(static_cast<FrameKind>(9), "its own") +
        velkctl::EncodeState(EntryState::kApplying);
};

TEST_F(LaterJournalTest, IsLeftAsItIsByRecover) {
    const Told told = Recover();
    EXPECT_EQ(told.status, ExitStatus::kDone);
    EXPECT_EQ(told.output, "nothing to recover\n");
    EXPECT_EQ(told.error,
              "velkctl: note: recover: /var/libvelk/journal/000002-tktk is left as it is\n"
              "  made by a later velkctl\n");
    EXPECT_EQ(Text(), kNewText);
    EXPECT_EQ(ReadFile(kPath), later_);
}

TEST_F(LaterJournalTest, IsNotPassedOverByUndo) {
    const Told told = Undo();
    EXPECT_EQ(told.status, ExitStatus::kFailed);
    EXPECT_EQ(told.error,
              "velkctl: undo: change tktk cannot be taken back\n"
              "  made by a later velkctl\n"
              "  fix: 'velkctl undo ID' takes an earlier one back\n");
    EXPECT_EQ(Text(), kNewText);
    EXPECT_EQ(ReadFile(kPath), later_);
}

TEST_F(LaterJournalTest, IsShownByHistory) {
    const std::string output = History().output;
    EXPECT_TRUE(output.starts_with("tktk  1970-01-01 ")) << output;
    EXPECT_THAT(output, testing::HasSubstr("  made by a later velkctl\n97gq  "));
}

TEST_F(LaterJournalTest, HindersNoSetAndNoApply) {
    EXPECT_EQ(Set("10.0.0.3").status, ExitStatus::kDone);
    EXPECT_EQ(Text(), kThirdText);
    EXPECT_EQ(Apply("10.0.0.2").status, ExitStatus::kDone);
    EXPECT_EQ(Text(), kNewText);
    EXPECT_EQ(Undo().status, ExitStatus::kDone);
    EXPECT_EQ(Text(), kThirdText);
    EXPECT_EQ(ReadFile(kPath), later_);
    EXPECT_EQ(ReadJournal().entries.size(), 5U);
}

TEST_F(LaterJournalTest, IsKeptBeyondTheLimits) {
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(Set(i % 2 == 0 ? "10.0.0.3" : "10.0.0.2").status, ExitStatus::kDone);
    }
    EXPECT_EQ(ReadFile(kPath), later_);
}

// The journal cannot be written, and a set was made and recorded before.
class UnwritableJournalTest : public TornJournalTest {
  protected:
    // Expects the words of each verb. `reason` follows the folder's name in them.
    static void ExpectRefusals(const std::string& reason) {
        const std::string detail = "  /var/libvelk/journal: " + reason + "\n";
        const std::string fix = "  fix: make /var/libvelk/journal a folder that can be written";
        const Told set = Set("10.0.0.3");
        EXPECT_EQ(set.status, ExitStatus::kDone);
        EXPECT_EQ(set.error, "velkctl: note: set: undo cannot take this set back\n" + detail + fix +
                                 ", or give --no-journal\n");
        EXPECT_EQ(Text(), kThirdText);
        const Told apply = Apply("10.0.0.2");
        EXPECT_EQ(apply.status, ExitStatus::kFailed);
        EXPECT_EQ(apply.error, "velkctl: apply: the change was not begun\n" + detail + fix + "\n");
        const Told undo = Undo();
        EXPECT_EQ(undo.status, ExitStatus::kFailed);
        EXPECT_EQ(undo.error, "velkctl: undo: nothing was changed\n" + detail + fix + "\n");
        const Told recover = Recover();
        EXPECT_EQ(recover.status, ExitStatus::kFailed);
        EXPECT_EQ(recover.error,
                  "velkctl: recover: the journal cannot be used\n" + detail + fix + "\n");
        EXPECT_EQ(Text(), kThirdText);
    }
};

TEST_F(UnwritableJournalTest, OnAReadOnlyDisk) {
    EXPECT_EQ(Set("10.0.0.2").status, ExitStatus::kDone);
    const testkit::Mounted folder(kJournalFolder, kJournalFolder, "", MS_BIND, nullptr);
    ASSERT_EQ(mount("", kJournalFolder, "", MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr), 0);
    ExpectRefusals("Read-only file system");
    EXPECT_THAT(History().output, testing::HasSubstr("eth0.address  10.0.0.1 -> 10.0.0.2\n"));
    EXPECT_EQ(ReadJournal().entries.size(), 1U);
}

TEST_F(UnwritableJournalTest, WithAFileInItsPlace) {
    std::filesystem::remove_all(kJournalFolder);
    WriteFile(kJournalFolder, "a file");
    ExpectRefusals("Not a directory");
    const Told history = History();
    EXPECT_EQ(history.status, ExitStatus::kFailed);
    EXPECT_EQ(history.error,
              "velkctl: history: the journal cannot be read\n"
              "  /var/libvelk/journal: Not a directory\n"
              "  fix: make /var/libvelk/journal a folder that can be written\n");
    EXPECT_EQ(ReadFile(kJournalFolder), "a file");
    EXPECT_EQ(unlink(kJournalFolder), 0);
}

TEST_F(UnwritableJournalTest, WithALockThatIsALink) {
    EXPECT_EQ(Set("10.0.0.2").status, ExitStatus::kDone);
    EXPECT_EQ(unlink(testkit::kJournalLock), 0);
    EXPECT_EQ(symlink("/etc/passwd", testkit::kJournalLock), 0);
    ExpectRefusals("Too many levels of symbolic links");
    EXPECT_EQ(ReadJournal().entries.size(), 1U);
}

}  // namespace
}  // namespace fault
