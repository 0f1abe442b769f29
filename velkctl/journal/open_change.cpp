// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// open_change.cpp - the journal entry of a change that is under way.
#include "velkctl/journal/open_change.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <thread>

#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/wired/link_settings.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/files/file_image.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/take_line.h"

namespace velkctl {
namespace {

// A daemon or log that is stuck does not delay the change for longer: it is likely to fail anyway.
constexpr int kReadSeconds = 5;
constexpr std::chrono::milliseconds kLockPause{50};

bool IsTouched(const DeviceFile& file, const std::vector<Step>& steps) {
    return std::ranges::any_of(
        steps, [&](const Step& step) { return IsChangedBy(file, step.setting.row->id); });
}

std::vector<FileImage> ImagesBefore(const JournalEntry& entry) {
    std::vector<FileImage> images;
    for (const DeviceFile& file : DeviceFiles()) {
        if (IsTouched(file, entry.steps) || MayGetServersOfLease(file.path, entry)) {
            images.push_back(ReadFileImage(file.path));
        }
    }
    // A set of ntp removes the log, and an undo puts it back. The library notes old addresses in
    // /tmp, where anybody can write: that file is not kept.
    const auto is_ntp = [](const Step& step) { return step.setting.row->id == VELK_CMD_NTP; };
    if (FileImage log = ReadFileImage(velk::kNtpLog);
        (log.exists || entry.kind == EntryKind::kUndo) &&
        std::ranges::any_of(entry.steps, is_ntp)) {
        images.push_back(std::move(log));
    }
    return images;
}

// Returns the mode that ethtool shows. The library runs it with a shell, sudo and a result file: a
// get would take half the time of the whole set. Returns nothing if ethtool shows no mode here.
std::optional<Data> LinkModeOf(std::string_view interface) {
    const ToolRun run = RunTool({std::string(kLinkTool), std::string(interface)});
    velk::LinkSettings settings;
    for (std::string_view left = run.output; !left.empty();) {
        settings.Read(TakeLine(left));
    }
    Data data{};
    data[0] = static_cast<char>(settings.Mode());
    return run.status == 0 && data[0] != 0 ? std::optional(data) : std::nullopt;
}

// With method dhcp an address is that of the lease, which is no value to put back.
std::optional<Data> ConfiguredValue(const Setting& setting, const Device& device) {
    const bool is_of_lease =
        setting.row->held_in.is_of_lease && !device.HasStaticMethod(setting.interface);
    if (!setting.can_get() || is_of_lease) {
        return std::nullopt;
    }
    if (setting.row->held_in.tool == kLinkTool) {
        if (const std::optional<Data> mode = LinkModeOf(setting.interface)) {
            return mode;
        }
    }
    const Answer answer = device.GetWithin(setting, kReadSeconds);
    return answer.ok() ? std::optional(answer.data) : std::nullopt;
}

JournalEntry NewEntry(const ChangePlan& plan) {
    JournalEntry entry{.kind = plan.kind, .undoes = plan.undoes};
    entry.time = time(nullptr);
    entry.boot_id = RunningBootId();
    entry.boot_time = MillisecondsSinceBoot();
    entry.user = getuid();
    entry.restarts = plan.restarts;
    return entry;
}

// The library's lock keeps other programs from the files while they are read.
int ReadImages(JournalEntry& entry) {
    const LibraryLock lock;
    if (lock.is_busy()) {
        return lock.can_be_awaited() ? EWOULDBLOCK : EBUSY;
    }
    entry.before = ImagesBefore(entry);
    return 0;
}

const FileImage* FindImage(const std::vector<FileImage>& images, const std::string& path) {
    const auto image = std::ranges::find(images, path, &FileImage::path);
    return image == images.end() ? nullptr : &*image;
}

}  // namespace

bool MayGetServersOfLease(const std::string& path, const JournalEntry& entry) {
    const auto is_restarted_with_method = [&](const Step& step) {
        return step.setting.row->id == VELK_CMD_IP_METHOD &&
               std::ranges::find(entry.restarts, step.setting.interface) != entry.restarts.end();
    };
    return path == velk::kResolverFile &&
           std::ranges::any_of(entry.steps, is_restarted_with_method);
}

std::vector<Step> JournalSteps(const std::vector<SettingChange>& changes) {
    std::vector<Step> steps;
    steps.reserve(changes.size());
    for (const SettingChange& change : changes) {
        steps.push_back({change.setting, change.value});
    }
    return steps;
}

OpenChange::OpenChange(const StoredEntry& stored)
    : entry_(stored.decoded.entry),
      file_(std::make_unique<EntryFile>(stored.path, stored.decoded.valid_length)),
      has_lost_frame_(stored.size > stored.decoded.valid_length) {
}

int OpenChange::Begin(const ChangePlan& plan, const Device& device) {
    JournalEntry entry = NewEntry(plan);
    for (const Step& step : plan.steps) {
        const std::optional<Data> present = ConfiguredValue(step.setting, device);
        entry.steps.push_back({step.setting, step.new_value, present ? present : step.old_value});
    }
    interrupted_ = FindInterrupted();
    if (const int error = ReadImages(entry); error != 0) {
        return error;
    }
    auto file = std::make_unique<EntryFile>(entry);
    if (file->error() != 0) {
        return file->error();
    }
    PruneJournal(2 * SizeOf(entry.before));
    entry_ = std::move(entry);
    file_ = std::move(file);
    return 0;
}

int OpenChange::BeginWithin(int wait_seconds, const ChangePlan& plan, const Device& device) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(wait_seconds);
    int error = Begin(plan, device);
    const StopSignals signals;
    while (error == EWOULDBLOCK && std::chrono::steady_clock::now() < end &&
           signals.Pending() == 0) {
        std::this_thread::sleep_for(kLockPause);
        error = Begin(plan, device);
    }
    return error;
}

// A reader takes a lost frame in front of a state for damage of the disk. So the frames before the
// state are on disk first: a power cut loses only the end.
int OpenChange::Advance(EntryState state) {
    file_->Sync();
    file_->Append(EncodeState(state));
    file_->Sync();
    if (file_->error() == 0) {
        entry_.state = state;
    }
    return file_->error();
}

int OpenChange::Expect(const std::vector<FileImage>& images) {
    file_->Append(EncodeAfter(images));
    for (const FileImage& image : images) {
        AddAfter(entry_, image);
    }
    return file_->error();
}

void OpenChange::UseImages(JournalEntry entry) {
    entry_.after = std::move(entry.after);
    entry_.between = std::move(entry.between);
}

int OpenChange::RecordFiles() {
    std::vector<FileImage> changed;
    for (const FileImage& before : entry_.before) {
        const FileImage* after = FindImage(entry_.after, before.path);
        FileImage now = ReadFileImage(before.path);
        if (!now.HasContentsOf(after == nullptr ? before : *after)) {
            changed.push_back(std::move(now));
        }
    }
    return changed.empty() ? 0 : Expect(changed);
}

void OpenChange::RecordSteps(size_t made) {
    if (made < entry_.steps.size()) {
        file_->Append(EncodeSteps(made));
        entry_.steps.resize(made);
    }
}

void OpenChange::RecordMade(const std::vector<std::string>& names) {
    file_->Append(EncodeMade(names));
    KeepSteps(entry_, names);
}

void OpenChange::RecordPutBack(const std::vector<std::string>& items) {
    if (!items.empty()) {
        file_->Append(EncodePutBack(items));
        entry_.put_back.insert(entry_.put_back.end(), items.begin(), items.end());
    }
}

void OpenChange::RecordWindow(const ConfirmWindow& window) {
    file_->Append(EncodeWindow(window));
    entry_.window = window;
}

void OpenChange::RecordGuardian(const GuardianFacts& guardian) {
    file_->Append(EncodeGuardian(guardian));
    entry_.guardian = guardian;
}

void OpenChange::RecordTakingBack(const std::string& cause, bool is_untold) {
    file_->Append(EncodeTakingBack(cause, is_untold));
    entry_.cause = cause;
    entry_.is_untold = is_untold;
}

void OpenChange::RecordFilesBack() {
    entry_.files_back = RunningBootId();
    file_->Append(EncodeFilesBack(entry_.files_back));
}

int OpenChange::Sync() {
    file_->Sync();
    return file_->error();
}

int OpenChange::FlushFiles() const {
    int first = 0;
    for (const FileImage& image : entry_.before) {
        const int error = FlushFile(image.path);
        first = first != 0 ? first : error;
    }
    return first;
}

bool OpenChange::HasChangedNoFile() const {
    return std::ranges::all_of(entry_.after, [&](const FileImage& after) {
        return after.HasContentsOf(*FindImage(entry_.before, after.path));
    });
}

bool OpenChange::Discard() {
    const bool is_removed = file_->Remove();
    file_.reset();
    return is_removed;
}

}  // namespace velkctl
