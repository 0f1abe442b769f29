// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// open_change.cpp - the journal entry of a change that is under way.
#include "velkctl/journal/open_change.h"

#include <algorithm>
#include <cerrno>
#include <ctime>

#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/wired/link_settings.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

// A daemon or log that is stuck does not delay the change for longer: it is likely to fail anyway.
constexpr int kReadSeconds = 5;

bool IsTouched(const DeviceFile& file, const std::vector<Step>& steps) {
    return std::ranges::any_of(
        steps, [&](const Step& step) { return IsChangedBy(file, step.setting.row->id); });
}

// A DHCP client that starts or ends with the change writes the servers of its lease into the file.
bool MayGetServersOfLease(const DeviceFile& file, const ChangePlan& plan) {
    const auto is_restarted_with_method = [&](const Step& step) {
        return step.setting.row->id == VELK_CMD_IP_METHOD &&
               std::ranges::find(plan.restarts, step.setting.interface) != plan.restarts.end();
    };
    return file.path == velk::kResolverFile &&
           std::ranges::any_of(plan.steps, is_restarted_with_method);
}

std::vector<FileImage> ImagesBefore(const ChangePlan& plan) {
    const std::vector<Step>& steps = plan.steps;
    std::vector<FileImage> images;
    for (const DeviceFile& file : DeviceFiles()) {
        if (IsTouched(file, steps) || MayGetServersOfLease(file, plan)) {
            images.push_back(ReadFileImage(file.path));
        }
    }
    // A set of ntp removes the log. The library notes old addresses in /tmp, where anybody can
    // write: that file is not kept.
    const auto is_ntp = [](const Step& step) { return step.setting.row->id == VELK_CMD_NTP; };
    if (FileImage log = ReadFileImage(velk::kNtpLog);
        log.exists && std::ranges::any_of(steps, is_ntp)) {
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
        const size_t end = std::min(left.find('\n'), left.size() - 1) + 1;
        settings.Read(left.substr(0, end));
        left.remove_prefix(end);
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

size_t SizeOf(const std::vector<FileImage>& images) {
    size_t size = 0;
    for (const FileImage& image : images) {
        size += image.bytes.size();
    }
    return size;
}

// Returns the id of the newest entry if it was interrupted; else nothing.
std::string FindInterrupted() {
    const std::optional<StoredEntry> last = ReadLastEntry();
    return last && last->is_interrupted() ? last->decoded.entry.id : "";
}

const FileImage* FindImage(const std::vector<FileImage>& images, const std::string& path) {
    const auto image = std::ranges::find(images, path, &FileImage::path);
    return image == images.end() ? nullptr : &*image;
}

}  // namespace

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
      file_(std::make_unique<EntryFile>(stored.path, stored.decoded.valid_length)) {
}

int OpenChange::Begin(const ChangePlan& plan, const Device& device) {
    JournalEntry entry = NewEntry(plan);
    {
        const LibraryLock lock;
        if (lock.is_busy()) {
            return lock.can_be_awaited() ? EWOULDBLOCK : EBUSY;
        }
        entry.before = ImagesBefore(plan);
    }
    for (const Step& step : plan.steps) {
        entry.steps.push_back(
            {step.setting, step.new_value, ConfiguredValue(step.setting, device)});
    }
    interrupted_ = FindInterrupted();
    PruneJournal(2 * SizeOf(entry.before));
    auto file = std::make_unique<EntryFile>(entry);
    if (file->error() != 0) {
        return file->error();
    }
    entry_ = std::move(entry);
    file_ = std::move(file);
    return 0;
}

int OpenChange::Advance(EntryState state) {
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

void OpenChange::Discard() {
    file_->Remove();
    file_.reset();
}

}  // namespace velkctl
