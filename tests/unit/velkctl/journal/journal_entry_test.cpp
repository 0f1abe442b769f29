// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// One change of settings as the journal keeps it.
#include "velkctl/journal/journal_entry.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/data_of.h"
#include "support/paths.h"

namespace {

using testkit::DataOf;
using velkctl::DecodedEntry;
using velkctl::DecodeEntry;
using velkctl::EncodeAfter;
using velkctl::EncodeEntry;
using velkctl::EncodeFrame;
using velkctl::EncodeState;
using velkctl::EncodeSteps;
using velkctl::EntryHealth;
using velkctl::EntryKind;
using velkctl::EntryState;
using velkctl::FileImage;
using velkctl::FindSetting;
using velkctl::FrameKind;
using velkctl::JournalEntry;

using namespace std::string_literals;

FileImage ImageOf(const char* path, std::string bytes) {
    return {.path = path,
            .exists = true,
            .bytes = std::move(bytes),
            .mode = 0640,
            .owner = 3,
            .group = 4};
}

JournalEntry SomeEntry() {
    JournalEntry entry{.id = "k7f2", .kind = EntryKind::kApply, .undoes = "97gq", .time = 12345};
    entry.boot_id = "boot";
    entry.boot_time = 678;
    entry.user = 9;
    entry.steps = {{*FindSetting("eth0.address"), DataOf("10.0.0.2"), DataOf("10.0.0.1")},
                   {*FindSetting("eth1.psk"), std::nullopt, std::nullopt}};
    entry.restarts = {"eth0"};
    entry.before = {ImageOf(testkit::kInterfacesFile, "a\0b\n\xFF"s), {testkit::kResolverFile}};
    return entry;
}

void ExpectSame(const FileImage& one, const FileImage& other) {
    EXPECT_EQ(one.path, other.path);
    EXPECT_EQ(one.exists, other.exists);
    EXPECT_EQ(one.bytes, other.bytes);
    EXPECT_EQ(one.mode, other.mode);
    EXPECT_EQ(one.owner, other.owner);
    EXPECT_EQ(one.group, other.group);
    EXPECT_EQ(one.error, other.error);
}

TEST(JournalEntry, IsReadAsItWasWritten) {
    const JournalEntry written = SomeEntry();
    const DecodedEntry decoded = DecodeEntry(EncodeEntry(written));
    ASSERT_EQ(decoded.health, EntryHealth::kWhole);
    const JournalEntry& read = decoded.entry;
    EXPECT_EQ(read.id, "k7f2");
    EXPECT_EQ(read.kind, EntryKind::kApply);
    EXPECT_EQ(read.undoes, "97gq");
    EXPECT_EQ(read.time, 12345);
    EXPECT_EQ(read.boot_id, "boot");
    EXPECT_EQ(read.boot_time, 678);
    EXPECT_EQ(read.user, 9U);
    EXPECT_EQ(read.restarts, std::vector<std::string>{"eth0"});
    EXPECT_EQ(read.state, EntryState::kPrepared);
    ASSERT_EQ(read.steps.size(), 2U);
    EXPECT_EQ(read.steps[0].setting.name(), "eth0.address");
    EXPECT_EQ(read.steps[0].new_value, DataOf("10.0.0.2"));
    EXPECT_EQ(read.steps[0].old_value, DataOf("10.0.0.1"));
    EXPECT_EQ(read.steps[1].new_value, std::nullopt);
    EXPECT_EQ(read.steps[1].old_value, std::nullopt);
    ASSERT_EQ(read.before.size(), 2U);
    ExpectSame(read.before[0], written.before[0]);
    ExpectSame(read.before[1], written.before[1]);
    EXPECT_TRUE(read.after.empty());
}

TEST(JournalEntry, HasTheLastStateAndTheLastImages) {
    const std::string bytes = EncodeEntry(SomeEntry()) + EncodeState(EntryState::kApplying) +
                              EncodeAfter({ImageOf(testkit::kInterfacesFile, "one")}) +
                              EncodeAfter({ImageOf(testkit::kInterfacesFile, "two")}) +
                              EncodeSteps(1) + EncodeState(EntryState::kDone);
    const JournalEntry entry = DecodeEntry(bytes).entry;
    EXPECT_EQ(entry.state, EntryState::kDone);
    EXPECT_EQ(entry.steps.size(), 1U);
    ASSERT_EQ(entry.after.size(), 1U);
    EXPECT_EQ(entry.after[0].bytes, "two");
    ASSERT_EQ(entry.between.size(), 1U);
    EXPECT_EQ(entry.between[0].bytes, "one");
}

TEST(JournalEntry, HasTheStepsThatWereMadeAndTheItemsThatWerePutBack) {
    const std::string bytes = EncodeEntry(SomeEntry()) +
                              velkctl::EncodeMade({SomeEntry().steps[1].setting.name()}) +
                              velkctl::EncodePutBack({"one"}) + velkctl::EncodePutBack({"two"});
    const JournalEntry entry = DecodeEntry(bytes).entry;
    ASSERT_EQ(entry.steps.size(), 1U);
    EXPECT_EQ(entry.steps[0].setting.name(), SomeEntry().steps[1].setting.name());
    EXPECT_EQ(entry.put_back, (std::vector<std::string>{"one", "two"}));
}

TEST(JournalEntry, IgnoresAKindThatItDoesNotKnow) {
    const std::string bytes = EncodeEntry(SomeEntry()) +
                              EncodeFrame(static_cast<FrameKind>(99), "odd") +
                              EncodeState(EntryState::kDone);
    const DecodedEntry decoded = DecodeEntry(bytes);
    EXPECT_EQ(decoded.health, EntryHealth::kWhole);
    EXPECT_EQ(decoded.entry.state, EntryState::kDone);
}

TEST(JournalEntry, IsClosedWhenNothingIsLeftToDo) {
    for (const EntryState state :
         {EntryState::kDone, EntryState::kConfirmed, EntryState::kReverted, EntryState::kKept}) {
        EXPECT_TRUE(JournalEntry{.state = state}.is_closed()) << NameOf(state);
    }
    for (const EntryState state :
         {EntryState::kPrepared, EntryState::kApplying, EntryState::kWaiting,
          EntryState::kReverting, EntryState::kStuck}) {
        EXPECT_FALSE(JournalEntry{.state = state}.is_closed()) << NameOf(state);
    }
}

// A cut before the end of the first state: nothing was begun. After it, the state counts that is
// whole.
TEST(JournalEntry, MayBeTornAtAnyPlace) {
    const std::string begun = EncodeEntry(SomeEntry());
    const std::string bytes = begun + EncodeState(EntryState::kApplying) +
                              EncodeAfter({ImageOf(testkit::kInterfacesFile, "new")}) +
                              EncodeState(EntryState::kDone);
    const size_t applying = begun.size() + EncodeState(EntryState::kApplying).size();
    for (size_t length = 0; length < bytes.size(); ++length) {
        const DecodedEntry decoded = DecodeEntry(bytes.substr(0, length));
        const bool is_begun = length >= begun.size();
        EXPECT_EQ(decoded.health, is_begun ? EntryHealth::kWhole : EntryHealth::kTorn) << length;
        EXPECT_EQ(decoded.entry.state,
                  length >= applying ? EntryState::kApplying : EntryState::kPrepared)
            << length;
    }
}

std::string WithFlip(std::string bytes, size_t place) {
    bytes[place] = static_cast<char>(bytes[place] ^ 1);
    return bytes;
}

// A frame that is damaged in front of a last state is no cut. Nothing may be taken back.
TEST(JournalEntry, OfAFinishedChangeMayBeDamagedAtAnyPlace) {
    const std::string start = EncodeEntry(SomeEntry()) + EncodeState(EntryState::kApplying) +
                              EncodeAfter({ImageOf(testkit::kInterfacesFile, "new")});
    const std::string bytes = start + EncodeState(EntryState::kDone);
    for (size_t place = 0; place < bytes.size(); ++place) {
        const DecodedEntry decoded = DecodeEntry(WithFlip(bytes, place));
        if (place < start.size()) {
            EXPECT_EQ(decoded.health, EntryHealth::kDamaged) << place;
        } else {
            EXPECT_EQ(decoded.health, EntryHealth::kWhole) << place;
            EXPECT_EQ(decoded.entry.state, EntryState::kApplying) << place;
        }
    }
}

// The entry is kept where its change may have been begun.
TEST(JournalEntry, OfAChangeThatWasBegunIsNotTorn) {
    const std::string start = EncodeEntry(SomeEntry());
    const std::string bytes = start + EncodeState(EntryState::kApplying);
    for (size_t place = 0; place < bytes.size(); ++place) {
        const DecodedEntry decoded = DecodeEntry(WithFlip(bytes, place));
        EXPECT_EQ(decoded.health,
                  place < start.size() ? EntryHealth::kDamaged : EntryHealth::kWhole)
            << place;
    }
}

TEST(JournalEntry, OfALaterVelkctlIsNotUnderstood) {
    const std::string header =
        R"({"schema":2,"id":"k7f2","time":77,"user":5,"kind":"other","steps":7})";
    const DecodedEntry decoded = DecodeEntry(EncodeFrame(FrameKind::kHeader, header));
    EXPECT_EQ(decoded.health, EntryHealth::kLater);
    EXPECT_EQ(decoded.entry.id, "k7f2");
    EXPECT_EQ(decoded.entry.time, 77);
    EXPECT_EQ(decoded.entry.user, 5U);
}

// A later velkctl may name its facts otherwise. Its entry is never taken for a damaged one, which
// may be removed.
TEST(JournalEntry, OfALaterVelkctlMayHaveOtherFacts) {
    const std::string bytes = EncodeFrame(FrameKind::kHeader, R"({"schema":2,"times":[1,2]})") +
                              "torn" + EncodeState(EntryState::kDone);
    EXPECT_EQ(DecodeEntry(bytes).health, EntryHealth::kLater);
}

std::string Replaced(std::string text, std::string_view old_part, std::string_view new_part) {
    return text.replace(text.find(old_part), old_part.size(), new_part);
}

// The whole entry with another header. Its checksum is right.
DecodedEntry WithHeader(std::string_view old_part, std::string_view new_part) {
    const std::string bytes = EncodeEntry(SomeEntry());
    const std::string header = velkctl::DecodeFrames(bytes).frames.front().payload;
    const std::string rest = bytes.substr(EncodeFrame(FrameKind::kHeader, header).size());
    return DecodeEntry(EncodeFrame(FrameKind::kHeader, Replaced(header, old_part, new_part)) +
                       rest);
}

TEST(JournalEntry, IsDamagedIfItMakesNoSense) {
    EXPECT_EQ(WithHeader("\"time\"", "\"time\"").health, EntryHealth::kWhole);
    EXPECT_EQ(WithHeader("\"time\"", "\"tame\"").health, EntryHealth::kDamaged);
    EXPECT_EQ(WithHeader("{", "").health, EntryHealth::kDamaged);
    EXPECT_EQ(WithHeader("\"apply\"", "\"other\"").health, EntryHealth::kDamaged);
    EXPECT_EQ(WithHeader("eth0.address", "eth0.addless").health, EntryHealth::kDamaged);
    EXPECT_EQ(WithHeader("\"old\":\"", "\"old\":\"x").health, EntryHealth::kDamaged);
    EXPECT_EQ(
        DecodeEntry(EncodeEntry(SomeEntry()) + EncodeFrame(FrameKind::kState, R"({"state":"odd"})"))
            .health,
        EntryHealth::kDamaged);
    EXPECT_EQ(DecodeEntry(EncodeState(EntryState::kDone)).health, EntryHealth::kDamaged);
}

// Otherwise a user who can write the journal could have root write any file.
TEST(JournalEntry, IsDamagedIfItNamesAnotherFile) {
    for (const char* path : {"/etc/passwd", testkit::kUsbDevices, ""}) {
        JournalEntry entry = SomeEntry();
        entry.before.front().path = path;
        EXPECT_EQ(DecodeEntry(EncodeEntry(entry)).health, EntryHealth::kDamaged) << path;
    }
}

}  // namespace
