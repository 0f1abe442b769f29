// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// put_back.cpp - puts the files and values of a change back.
#include "velkctl/journal/put_back.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::chrono::seconds kAgentTime{30};
// A set of another program ends within this time.
constexpr int kSetSeconds = 2;

bool IsPrefixOf(std::string_view part, std::string_view whole) {
    return part.size() < whole.size() && whole.starts_with(part);
}

// After a power cut, blocks that were not written may read as NULs.
std::string_view WithoutNuls(std::string_view bytes) {
    return bytes.substr(0, bytes.find_last_not_of('\0') + 1);
}

bool IsCutOf(const FileImage& now, const FileImage& image) {
    const std::string_view text = WithoutNuls(now.bytes);
    const bool is_cut = text.empty() || IsPrefixOf(text, image.bytes) ||
                        (text.size() < now.bytes.size() && text == image.bytes);
    return now.exists && now.error == 0 && is_cut;
}

std::string_view CutLine(std::string_view& text) {
    const size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end);
    return line;
}

// True if each line is one of these two texts' lines at its place. The library makes some sets in
// two edits; between them the file is neither as before nor as after.
bool IsMixOf(std::string_view text, std::string_view one, std::string_view other) {
    while (!text.empty() && !one.empty() && !other.empty()) {
        const std::string_view line = CutLine(text);
        const bool is_of_one = line == CutLine(one);
        if (line != CutLine(other) && !is_of_one) {
            return false;
        }
    }
    return text.empty() && one.empty() && other.empty();
}

// Returns the images of the file that the change has made.
std::vector<const FileImage*> OwnImages(const std::string& path, const JournalEntry& entry) {
    std::vector<const FileImage*> images;
    for (const std::vector<FileImage>* list : {&entry.after, &entry.between}) {
        for (const FileImage& image : *list) {
            if (image.path == path) {
                images.push_back(&image);
            }
        }
    }
    return images;
}

const FileImage& ImageBefore(const std::string& path, const JournalEntry& entry) {
    return *std::ranges::find(entry.before, path, &FileImage::path);
}

// The library edits a file in a copy in this folder, and removes the copy at the end.
FileImage EditCopyOf(const std::string& path) {
    return ReadFileImage(velk::kEditFolder + path.substr(path.rfind('/')));
}

// A step that was killed has left its edit copy: the text that the file was to get.
FileCase CompareWithEditCopy(const FileImage& now, const JournalEntry& entry) {
    const FileImage copy = EditCopyOf(now.path);
    if (entry.is_closed() || !copy.exists || copy.error != 0 || copy.bytes.empty()) {
        return FileCase::kOther;
    }
    if (copy.bytes == now.bytes) {
        return FileCase::kNew;
    }
    return IsCutOf(now, copy) ? FileCase::kCut : FileCase::kOther;
}

bool MayWrite(const FileImage& now) {
    return !now.exists || access(now.path.c_str(), W_OK) == 0;
}

Problem Left(std::string subject, std::string detail) {
    return {.message = std::move(subject) + ": not put back", .detail = std::move(detail)};
}

bool ChangesFile(const Setting& setting, std::string_view path) {
    return std::ranges::any_of(DeviceFiles(), [&](const DeviceFile& file) {
        return file.path == path && IsChangedBy(file, setting.row->id);
    });
}

bool IsSame(const Setting& setting, const Data& one, const Data& other) {
    return setting.row->kind->Print(one) == setting.row->kind->Print(other);
}

// A key that is cleared comes last: the library does not clear the one in use.
std::vector<Step> StepsInOrder(const JournalEntry& entry) {
    std::vector<Step> steps = entry.steps;
    std::stable_partition(steps.begin(), steps.end(), [](const Step& step) {
        return !step.setting.row->secret || step.old_value != Data{};
    });
    return steps;
}

// Returns the reason why the value stays as it is; empty if none.
std::string ObstacleOf(const Step& step, const Answer& held) {
    if (!held.ok()) {
        return "it cannot be read: " + FailureReason(held);
    }
    const bool is_known = IsSame(step.setting, held.data, *step.old_value) ||
                          (step.new_value && IsSame(step.setting, held.data, *step.new_value));
    return is_known ? "" : "another program has set it since";
}

// Reads the values of a change. A silent daemon is asked once.
class Values {
  public:
    explicit Values(const Device& device) : device_(device) {}

    Answer Get(const Setting& setting) {
        const bool is_of_daemon = setting.row->held_in.holder == Holder::kDaemon;
        if (is_of_daemon && silence_) {
            return *silence_;
        }
        Answer answer = device_.Get(setting);
        if (is_of_daemon && !answer.ok()) {
            silence_ = answer;
        }
        return answer;
    }

  private:
    const Device& device_;
    std::optional<Answer> silence_;
};

// True if bytes cannot put the setting back: it is not in a file, or in one of these.
bool NeedsLibrary(const Setting& setting, const std::vector<std::string>& foreign) {
    const auto is_in = [&](const std::string& path) { return ChangesFile(setting, path); };
    return setting.row->held_in.holder != Holder::kFile || std::ranges::any_of(foreign, is_in);
}

bool IsForeign(const FileImage& now, FileCase found) {
    return found == FileCase::kOther || (found != FileCase::kOld && !MayWrite(now));
}

std::vector<std::string> ForeignFiles(const JournalEntry& entry) {
    std::vector<std::string> foreign;
    for (const FileImage& before : entry.before) {
        const FileImage now = ReadFileImage(before.path);
        if (IsForeign(now, CompareFile(now, entry))) {
            foreign.push_back(now.path);
        }
    }
    return foreign;
}

constexpr std::string_view kUnknownOld = "its old value is not known";

// Puts one entry back. The steps of it are members because they share the result.
class Work {
  public:
    Work(const JournalEntry& entry, PutBackOptions options, const Device& device)
        : entry_(entry), options_(options), device_(device), values_(device) {}

    PutBackResult Run();

  private:
    void WriteFiles();
    void WriteFile(const FileImage& now);
    void SetValues();
    void SetValue(const Step& step);
    std::string SetOldValue(const Step& step);
    void FlushFiles();

    const JournalEntry& entry_;
    const PutBackOptions options_;
    const Device& device_;
    Values values_;
    std::vector<std::string> foreign_;  // files that another program has written since
    bool restarts_agent_ = false;
    PutBackResult result_;
};

PutBackResult Work::Run() {
    WriteFiles();
    if (result_.is_locked) {
        return std::move(result_);
    }
    // The agent reads its file at its start only.
    if (restarts_agent_) {
        (void)RunTool({"sudo", velk::kSnmpScript, "restart"}, kAgentTime);
    }
    SetValues();
    FlushFiles();
    return std::move(result_);
}

void Work::WriteFiles() {
    (void)AwaitLibraryLock(kSetSeconds);
    const StopSignals signals;
    const LibraryLock lock;
    result_.is_locked = lock.is_busy();
    if (result_.is_locked) {
        return;
    }
    for (const FileImage& before : entry_.before) {
        WriteFile(ReadFileImage(before.path));
    }
}

void Work::WriteFile(const FileImage& now) {
    const FileCase found = CompareFile(now, entry_);
    if (IsForeign(now, found)) {
        foreign_.push_back(now.path);
        return;
    }
    if (found == FileCase::kOld) {
        return;
    }
    if (const int error = WriteFileImage(ImageBefore(now.path, entry_)); error != 0) {
        result_.left.push_back(Left(now.path, strerror(error)));
        return;
    }
    result_.has_changed = true;
    restarts_agent_ = restarts_agent_ || now.path == velk::kSnmpFile;
}

void Work::SetValues() {
    for (const Step& step : StepsInOrder(entry_)) {
        const bool is_of_daemon = step.setting.row->held_in.holder == Holder::kDaemon;
        if (is_of_daemon && options_.skip_daemon) {
            result_.waits_for_daemon = true;
        } else if (NeedsLibrary(step.setting, foreign_)) {
            SetValue(step);
        }
    }
}

void Work::SetValue(const Step& step) {
    const std::string name = step.setting.name();
    if (!step.old_value) {
        result_.left.push_back(Left(name, std::string(kUnknownOld)));
        return;
    }
    const Answer held = values_.Get(step.setting);
    if (held.ok() && IsSame(step.setting, held.data, *step.old_value)) {
        return;
    }
    const std::string obstacle = ObstacleOf(step, held);
    if (!obstacle.empty() && !(held.ok() && options_.force)) {
        result_.left.push_back(Left(name, obstacle));
        return;
    }
    const std::string failure = SetOldValue(step);
    result_.has_changed = result_.has_changed || failure.empty();
    if (!failure.empty()) {
        result_.left.push_back(Left(name, failure));
    }
}

// Returns the reason of a failure; empty if the device holds the value.
std::string Work::SetOldValue(const Step& step) {
    const Answer answer = device_.Set(step.setting, *step.old_value);
    if (!answer.ok()) {
        return FailureReason(answer);
    }
    const Answer held = values_.Get(step.setting);
    const bool is_held = held.ok() && IsSame(step.setting, held.data, *step.old_value);
    return is_held ? "" : "the library reported success, but the device holds another value";
}

void Work::FlushFiles() {
    for (const FileImage& before : entry_.before) {
        if (const int error = FlushFile(before.path); error != 0) {
            result_.left.push_back(Left(before.path, strerror(error)));
        }
    }
}

}  // namespace

FileCase CompareFile(const FileImage& now, const JournalEntry& entry) {
    const FileImage& before = ImageBefore(now.path, entry);
    if (now.HasContentsOf(before)) {
        return FileCase::kOld;
    }
    if (now.error != 0 || before.error != 0) {
        return FileCase::kOther;
    }
    const std::vector<const FileImage*> own = OwnImages(now.path, entry);
    const auto is_own = [&](const FileImage* image) {
        const bool may_be_mix = now.exists && image->exists && !entry.is_closed();
        return now.HasContentsOf(*image) ||
               (may_be_mix && IsMixOf(now.bytes, before.bytes, image->bytes));
    };
    if (std::ranges::any_of(own, is_own)) {
        return FileCase::kNew;
    }
    if (!now.exists && !entry.is_closed()) {
        return FileCase::kCut;  // the change was interrupted between a removal and its record
    }
    const auto is_cut = [&](const FileImage* image) { return IsCutOf(now, *image); };
    const bool was_cut = IsCutOf(now, before) || std::ranges::any_of(own, is_cut);
    return was_cut ? FileCase::kCut : CompareWithEditCopy(now, entry);
}

PutBackResult PutBack(const JournalEntry& entry, PutBackOptions options, const Device& device) {
    return Work(entry, options, device).Run();
}

PutBackResult PutBackOpen(OpenChange& change, PutBackOptions options, const Device& device,
                          Report& report) {
    // Without this state on disk the files are still put back: they are the reason for the journal.
    if (change.entry().state != EntryState::kReverting) {
        (void)change.Advance(EntryState::kReverting);
    }
    PutBackResult result = PutBack(change.entry(), options, device);
    for (const Problem& problem : result.left) {
        report.Complain(problem);
    }
    return result;
}

void CloseTakenBack(OpenChange& change, const PutBackResult& result) {
    if (!result.left.empty()) {
        (void)change.Advance(EntryState::kStuck);
    } else if (result.is_whole()) {
        (void)change.Advance(EntryState::kReverted);
    } else {
        (void)change.Sync();
    }
}

PutBackResult TakeBack(OpenChange& change, PutBackOptions options, const Device& device,
                       Report& report) {
    if (change.entry().state == EntryState::kPrepared) {
        (void)change.Advance(EntryState::kReverted);
        return {};
    }
    PutBackResult result = PutBackOpen(change, options, device, report);
    CloseTakenBack(change, result);
    return result;
}

ExitStatus RestartAfter(const JournalEntry& entry, const Device& device, Report& report) {
    ExitStatus status = ExitStatus::kDone;
    for (const std::string& interface : entry.restarts) {
        const Answer answer = device.Restart(interface, {});
        if (!answer.ok()) {
            report.Complain(ProblemOf(interface + ": could not be restarted", "", answer));
            status = StatusOf(answer);
        }
    }
    return status;
}

std::vector<Problem> FindObstacles(const JournalEntry& entry, const Device& device) {
    Values values(device);
    const std::vector<std::string> foreign = ForeignFiles(entry);
    std::vector<Problem> obstacles;
    for (const Step& step : entry.steps) {
        if (!NeedsLibrary(step.setting, foreign)) {
            continue;
        }
        const std::string obstacle =
            step.old_value ? ObstacleOf(step, values.Get(step.setting)) : std::string(kUnknownOld);
        if (!obstacle.empty()) {
            obstacles.push_back(Left(step.setting.name(), obstacle));
        }
    }
    return obstacles;
}

}  // namespace velkctl
