// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_fuzz.cpp - the file of a journal entry: a whole one is written and read again the same, a
// cut one is never taken for damage, and no entry names a file that is none of the device's.
//
// An input is the bytes of the file.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

#include "fuzz/kit/check.h"
#include "fuzz/kit/journal_files.h"
#include "fuzz/kit/tool_device.h"
#include "fuzz/kit/tool_run.h"
#include "support/device_test.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"

namespace fuzz {
namespace {

using velkctl::DecodedEntry;
using velkctl::DecodeEntry;
using velkctl::EntryHealth;
using velkctl::FileImage;
using velkctl::JournalEntry;
using velkctl::Step;

bool AreSame(const FileImage& one, const FileImage& other) {
    return one.path == other.path && one.exists == other.exists && one.bytes == other.bytes &&
           one.mode == other.mode && one.owner == other.owner && one.group == other.group &&
           one.error == other.error;
}

bool AreSame(const Step& one, const Step& other) {
    return IsSameSetting(one.setting, other.setting) && one.new_value == other.new_value &&
           one.old_value == other.old_value;
}

template <typename Item>
bool AreSame(const std::vector<Item>& one, const std::vector<Item>& other) {
    return std::ranges::equal(one, other,
                              [](const Item& a, const Item& b) { return AreSame(a, b); });
}

// The parts that a new entry is written with.
bool AreSame(const JournalEntry& one, const JournalEntry& other) {
    return one.id == other.id && one.kind == other.kind && one.undoes == other.undoes &&
           one.time == other.time && one.boot_id == other.boot_id &&
           one.boot_time == other.boot_time && one.user == other.user &&
           one.restarts == other.restarts && one.state == other.state &&
           AreSame(one.steps, other.steps) && AreSame(one.before, other.before) &&
           AreSame(one.after, other.after);
}

void CheckImages(const std::vector<FileImage>& images) {
    for (const FileImage& image : images) {
        Check(IsJournalled(image.path), "an entry has files of the device alone");
    }
}

void CheckWhole(const JournalEntry& entry) {
    CheckImages(entry.before);
    CheckImages(entry.after);
    CheckImages(entry.between);
    const DecodedEntry again = DecodeEntry(EncodeEntry(entry));
    Check(again.health == EntryHealth::kWhole, "a written entry is whole");
    Check(AreSame(again.entry, entry), "an entry is written and read again the same");
}

// A file of the device could have the bytes of a frame in it.
bool HasFrameInFile(const JournalEntry& entry) {
    for (const auto* images : {&entry.before, &entry.after, &entry.between}) {
        for (const FileImage& image : *images) {
            if (image.bytes.find("state") != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

// Each third of the file, and the last bytes of it.
void CheckCuts(const DecodedEntry& decoded, std::string_view bytes) {
    const size_t length = decoded.valid_length;
    const DecodedEntry whole = DecodeEntry(bytes.substr(0, length));
    Check(whole.health == EntryHealth::kWhole && AreSame(whole.entry, decoded.entry),
          "the frames alone are the same entry");
    if (HasFrameInFile(decoded.entry)) {
        return;
    }
    for (const size_t cut : {length / 3, length / 3 * 2, length - 1, length - 13}) {
        const DecodedEntry part = DecodeEntry(bytes.substr(0, std::min(cut, length)));
        Check(part.health == EntryHealth::kWhole || part.health == EntryHealth::kTorn,
              "a cut entry is whole or torn");
        Check(part.valid_length <= cut, "only frames in the file are read");
    }
}

void CheckKeysAreHidden(const JournalEntry& entry, const std::string& printed) {
    for (const Step& step : entry.steps) {
        for (const auto& value : {step.old_value, step.new_value}) {
            const std::string text = value ? std::string(value->data()) : "";
            Check(!step.setting.row->secret || !IsTelling(text) ||
                      printed.find(text) == std::string::npos,
                  "the history shows no key");
        }
    }
}

// Before it runs, a verb takes back a change that was not confirmed in time, and reports one that
// was taken back.
bool IsSettled(const JournalEntry& entry) {
    return !entry.needs_confirmation() && !entry.is_untold;
}

// The verbs that read the journal change nothing.
void CheckVerbs(const DecodedEntry& decoded, std::string_view bytes) {
    PlaceDevice();
    PlaceEntry(1, bytes);
    const DeviceFiles before = ReadDeviceFiles();
    const ToolTurn turn;
    const velkctl::JournalListing listing = velkctl::ReadJournal();
    Check(listing.error == 0 && listing.entries.size() == 1, "the folder has one entry");
    Check(listing.entries[0].decoded.health == decoded.health, "its file is read the same");
    for (const char* verb : {"history", "pending"}) {
        for (const ToolResult& result : {RunTool({verb}), RunTool({verb, "--json"})}) {
            CheckKeysAreHidden(decoded.entry, result.All());
        }
    }
    Check(!IsSettled(decoded.entry) || ReadDeviceFiles() == before,
          "reading the journal changes nothing");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const fuzz::DecodedEntry decoded = velkctl::DecodeEntry(bytes);
    fuzz::Check(decoded.valid_length <= size, "only frames in the file are read");
    if (decoded.health == fuzz::EntryHealth::kWhole) {
        fuzz::CheckWhole(decoded.entry);
        fuzz::CheckCuts(decoded, bytes);
    }
    fuzz::CheckVerbs(decoded, bytes);
    return 0;
}
