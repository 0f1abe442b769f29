// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recover_fuzz.cpp - recover, with any bytes in the journal: it writes no file but those of the
// changes that it takes back, leaves none half-written, also if a write fails, and a second recover
// changes nothing.
//
// An input is a line "options ...", then the frames of entries, one after the other. The options
// are words: new, cut or old for the files as the first change has left them, as a power cut has
// left them or as they were before; force, keep, boot and json for recover; fault1 to fault9 for
// the write that fails.
#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/check.h"
#include "fuzz/kit/journal_files.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/tool_device.h"
#include "fuzz/kit/tool_run.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/settings/device_files.h"

namespace fuzz {
namespace {

using velkctl::DecodedEntry;
using velkctl::EntryHealth;
using velkctl::FileImage;
using velkctl::Frame;
using velkctl::FrameKind;
using velkctl::JournalEntry;

constexpr size_t kMostEntries = 3;

struct Input {
    std::string options;
    Texts entries;  // the bytes of each
};

bool Has(const Input& input, std::string_view option) {
    return input.options.find(" " + std::string(option) + " ") != std::string::npos;
}

// An entry begins with its header. Bytes that are no frame belong to the last entry.
Input InputIn(std::string_view bytes) {
    Input input;
    if (bytes.starts_with("options ")) {
        input.options = TakeLine(bytes) + " ";
    }
    const velkctl::FrameList list = velkctl::DecodeFrames(bytes);
    input.entries.emplace_back();
    for (const Frame& frame : list.frames) {
        const bool begins = frame.kind == FrameKind::kHeader && !input.entries.back().empty() &&
                            input.entries.size() < kMostEntries;
        if (begins) {
            input.entries.emplace_back();
        }
        input.entries.back().append(EncodeFrame(frame.kind, frame.payload));
    }
    input.entries.back().append(bytes.substr(list.valid_length));
    return input;
}

std::vector<DecodedEntry> Decoded(const Input& input) {
    std::vector<DecodedEntry> entries;
    for (const std::string& bytes : input.entries) {
        entries.push_back(velkctl::DecodeEntry(bytes));
    }
    return entries;
}

void Place(const FileImage& image, bool is_cut) {
    if (!image.exists) {
        (void)remove(image.path.c_str());
    } else {
        testkit::WriteFile(image.path,
                           is_cut ? image.bytes.substr(0, image.bytes.size() / 2) : image.bytes);
    }
}

// The files as the changes have left them.
void PlaceFiles(const Input& input, const std::vector<DecodedEntry>& entries) {
    for (const DecodedEntry& decoded : entries) {
        if (decoded.health != EntryHealth::kWhole || Has(input, "old")) {
            continue;
        }
        for (const FileImage& image : decoded.entry.after) {
            Place(image, Has(input, "cut"));
        }
    }
}

void PlaceAll(const Input& input, const std::vector<DecodedEntry>& entries) {
    PlaceDevice();
    const testkit::Unrecorded unrecorded;
    PlaceFiles(input, entries);
    int number = 0;
    for (const std::string& bytes : input.entries) {
        PlaceEntry(++number, bytes);
    }
}

std::vector<std::string> ArgumentsOf(const Input& input) {
    std::vector<std::string> words = {"recover"};
    for (const char* option : {"force", "keep", "boot", "json"}) {
        if (Has(input, option)) {
            words.push_back("--" + std::string(option));
        }
    }
    return words;
}

// Returns the number of the write that fails; nothing for none.
std::optional<int> FaultIn(const Input& input) {
    for (int number = 1; number <= 9; ++number) {
        if (Has(input, "fault" + std::to_string(number))) {
            return number;
        }
    }
    return std::nullopt;
}

// The journal, and files that the library and its lock leave.
bool IsScratch(const std::string& path) {
    for (const char* scratch : {testkit::kLockFile, testkit::kResultFile, testkit::kJournalLock,
                                testkit::kOldAddressFile, testkit::kSemaphoreFile}) {
        if (path == scratch) {
            return true;
        }
    }
    return path.starts_with(std::string(testkit::kJournalFolder) + "/");
}

// The files of the device alone.
DeviceFiles WithoutScratch(DeviceFiles files) {
    std::erase_if(files, [](const auto& file) { return IsScratch(file.first); });
    return files;
}

bool IsSetIn(const std::string& path, const JournalEntry& entry) {
    return std::ranges::any_of(entry.steps, [&](const velkctl::Step& step) {
        return velkctl::IsChangedBy(path, step.setting.row->id);
    });
}

// True if the bytes are those of an image from before a change.
bool IsImageBefore(const std::string& path, const std::string& bytes, const JournalEntry& entry) {
    return std::ranges::any_of(entry.before, [&](const FileImage& image) {
        return image.path == path && image.exists && image.bytes == bytes;
    });
}

bool IsRemovedBy(const std::string& path, const JournalEntry& entry) {
    return std::ranges::any_of(
        entry.before, [&](const FileImage& image) { return image.path == path && !image.exists; });
}

// True for the beginning of an image from before a change.
bool IsCutImage(const std::string& path, const std::string& bytes, const JournalEntry& entry) {
    return std::ranges::any_of(entry.before, [&](const FileImage& image) {
        return image.path == path && image.exists && image.bytes.size() > bytes.size() &&
               image.bytes.starts_with(bytes);
    });
}

// A file that recover has changed is whole: as before one of the changes, or as a set leaves it.
void CheckFile(const std::string& path, const std::vector<DecodedEntry>& entries) {
    const bool exists = testkit::Exists(path);
    const std::string bytes = exists ? testkit::ReadFile(path) : "";
    const bool is_right = std::ranges::any_of(entries, [&](const DecodedEntry& decoded) {
        const JournalEntry& entry = decoded.entry;
        return decoded.health == EntryHealth::kWhole &&
               ((IsSetIn(path, entry) && !IsCutImage(path, bytes, entry)) ||
                (exists ? IsImageBefore(path, bytes, entry) : IsRemovedBy(path, entry)));
    });
    Check(is_right, "recover leaves the bytes from before a change: " + path);
}

// The same for a file that no set may have written since.
void CheckWholeFile(const std::string& path, const std::vector<DecodedEntry>& entries) {
    const bool exists = testkit::Exists(path);
    const std::string bytes = exists ? testkit::ReadFile(path) : "";
    Check(std::ranges::any_of(entries,
                              [&](const DecodedEntry& decoded) {
                                  return exists ? IsImageBefore(path, bytes, decoded.entry)
                                                : IsRemovedBy(path, decoded.entry);
                              }),
          "after a failed write, the next recover puts the file back as a whole: " + path);
}

// Nothing is done to an entry that this velkctl cannot read.
void CheckUnreadable(const Input& input, const std::vector<DecodedEntry>& entries) {
    for (size_t i = 0; i < entries.size(); ++i) {
        const std::string path =
            std::string(testkit::kJournalFolder) + "/00000" + std::to_string(i + 1) + "-k7f2";
        if (entries[i].health == EntryHealth::kLater ||
            entries[i].health == EntryHealth::kDamaged) {
            Check(testkit::ReadFile(path) == input.entries[i], "an unreadable entry stays");
        }
    }
}

bool HasInterrupted(const std::vector<DecodedEntry>& entries) {
    return std::ranges::any_of(entries, [](const DecodedEntry& decoded) {
        return decoded.health == EntryHealth::kWhole && !decoded.entry.is_closed();
    });
}

// Returns the files after a recover that meets no fault.
DeviceFiles RunWhole(const Input& input, const std::vector<DecodedEntry>& entries, int& status) {
    PlaceAll(input, entries);
    const DeviceFiles before = WithoutScratch(ReadDeviceFiles());
    const ToolTurn turn;
    const std::vector<std::string> arguments = ArgumentsOf(input);
    status = RunTool(arguments).status;
    const DeviceFiles after = WithoutScratch(ReadDeviceFiles());
    const std::vector<std::string> changed = Differences(before, after);
    Check(changed.empty() || (HasInterrupted(entries) && status != 2),
          "recover changes nothing without a reason");
    for (const std::string& path : changed) {
        Check(IsJournalled(path), "recover writes only files of the journal: " + path);
        CheckFile(path, entries);
    }
    CheckUnreadable(input, entries);
    if (status == 0) {
        Check(RunTool(arguments).status == 0, "recover can be repeated");
        Check(WithoutScratch(ReadDeviceFiles()) == after, "a second recover changes nothing");
    }
    return after;
}

// A write that fails leaves the rest to the next recover. If the trial run of the steps has failed,
// the entry's own images count in its place: then the file may be put back as a whole and not by
// its settings.
void RunWithFault(const Input& input, const std::vector<DecodedEntry>& entries, int fault,
                  const DeviceFiles& expected) {
    PlaceAll(input, entries);
    const ToolTurn turn;
    auto& libc = testkit::LibcRecorder::Get();
    libc.PlanFault(testkit::Call::kWrite, fault, testkit::Reach::kThatOne, EIO);
    (void)RunTool(ArgumentsOf(input));
    libc.ForgetFault();
    if (RunTool(ArgumentsOf(input)).status != 0) {
        return;
    }
    for (const std::string& path : Differences(WithoutScratch(ReadDeviceFiles()), expected)) {
        Check(IsJournalled(path), "recover writes only files of the journal: " + path);
        CheckWholeFile(path, entries);
    }
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fuzz::Input input = fuzz::InputIn({reinterpret_cast<const char*>(data), size});
    const std::vector<velkctl::DecodedEntry> entries = fuzz::Decoded(input);
    int status = 0;
    const fuzz::DeviceFiles after = fuzz::RunWhole(input, entries, status);
    const std::optional<int> fault = fuzz::FaultIn(input);
    if (status == 0 && fault) {
        fuzz::RunWithFault(input, entries, *fault, after);
    }
    return 0;
}
