// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// put_back.cpp - puts the files and values of a change back.
#include "velkctl/journal/put_back.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <utility>

#include "lib/base/paths.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/edit_copy.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/files/file_image.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/journal/copy_trial.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/settings/value_text.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/take_line.h"

namespace velkctl {
namespace {

constexpr std::chrono::seconds kAgentTime{30};
// Another program that writes a file again and again is overtaken by one of so many tries.
constexpr int kCopyTries = 10;

// True if the file has a part of the image. After a power cut, any block that was not written may
// read as NULs.
bool IsCutOf(const FileImage& now, const FileImage& image) {
    for (size_t i = 0; i < now.bytes.size(); ++i) {
        const bool is_of_image = i < image.bytes.size() && now.bytes[i] == image.bytes[i];
        if (now.bytes[i] != '\0' && !is_of_image) {
            return false;
        }
    }
    return now.exists && now.error == 0;
}

// Removes the lines at the beginning that are one of these two texts' lines at their places.
void CutMixedLines(std::string_view& text, std::string_view& one, std::string_view& other) {
    while (!text.empty() && !one.empty() && !other.empty()) {
        const std::string_view line = FirstLine(text);
        if (line != FirstLine(one) && line != FirstLine(other)) {
            return;
        }
        (void)TakeLine(text);
        (void)TakeLine(one);
        (void)TakeLine(other);
    }
}

// True if each line is one of these two texts' lines at its place. The library makes some sets in
// two edits; between them the file is neither as before nor as after.
bool IsMixOf(std::string_view text, std::string_view one, std::string_view other) {
    CutMixedLines(text, one, other);
    return text.empty() && one.empty() && other.empty();
}

// True for the beginning of such a text, perhaps with NULs after it.
bool IsCutMixOf(std::string_view text, std::string_view one, std::string_view other) {
    text = text.substr(0, text.find_last_not_of('\0') + 1);
    CutMixedLines(text, one, other);
    return one.starts_with(text) || other.starts_with(text);
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

bool MayBeMix(const FileImage& now, const FileImage& image, const JournalEntry& entry) {
    return now.exists && image.exists && !entry.is_closed();
}

const FileImage& ImageBefore(const std::string& path, const JournalEntry& entry) {
    return *std::ranges::find(entry.before, path, &FileImage::path);
}

// Any user can make a file with the name of an edit copy: such a file must not have recover replace
// the text of an administrator.
bool IsOfLibrary(const EditCopy& copy) {
    return copy.state != EditState::kForeign && copy.state != EditState::kUnproven;
}

// The library edits a file in a copy, and removes the copy at the end.
FileImage EditCopyOf(const std::string& path) {
    for (const EditCopy& copy : FindEditCopies()) {
        if (copy.file->path == path && IsOfLibrary(copy)) {
            return ReadFileImage(copy.path);
        }
    }
    return {path};
}

// A step that was killed has left its edit copy: the text that the file was to get.
FileCase CompareWithEditCopy(const FileImage& now, const JournalEntry& entry) {
    if (entry.is_closed()) {
        return FileCase::kOther;
    }
    const FileImage copy = EditCopyOf(now.path);
    if (!copy.exists || copy.error != 0 || copy.bytes.empty()) {
        return FileCase::kOther;
    }
    if (copy.bytes == now.bytes) {
        return FileCase::kNew;
    }
    return IsCutOf(now, copy) ? FileCase::kCut : FileCase::kOther;
}

bool Contains(const std::vector<std::string>& list, const std::string& item) {
    return std::ranges::find(list, item) != list.end();
}

// A file that is left.
Problem LeftFile(const std::string& path, int error, const PutBackOptions& options) {
    return {.message = path + ": not put back",
            .detail = strerror(error),
            .remedy = options.fix,
            .file = path};
}

std::string ShownText(const Setting& setting, const Data& value) {
    return Quoted(ValueText(setting, value, false));
}

// A setting that is left. A person who repairs it by hand needs its value and its file.
Problem LeftSetting(const Step& step, std::string detail, const PutBackOptions& options) {
    const Setting& setting = step.setting;
    const char* file = setting.row->held_in.line.file;
    Problem problem{.message = setting.name() + ": not put back",
                    .setting = setting.name(),
                    .detail = std::move(detail),
                    .remedy = options.fix,
                    .file = file == nullptr ? "" : file};
    if (step.old_value) {
        problem.detail.append("; saved value: ").append(ShownText(setting, *step.old_value));
    }
    problem.detail.append(problem.file.empty() ? "" : "; file: ").append(problem.file);
    return problem;
}

// A key that is cleared comes last: the library does not clear the one in use.
std::vector<Step> StepsInOrder(const JournalEntry& entry) {
    std::vector<Step> steps = entry.steps;
    std::stable_partition(steps.begin(), steps.end(), [](const Step& step) {
        return !step.setting.row->secret || step.old_value != Data{};
    });
    return steps;
}

constexpr std::string_view kUnknownOld = "its old value is not known";

Problem Unreadable(const Step& step, const Answer& held, const PutBackOptions& options) {
    Problem problem = LeftSetting(step, "it cannot be read: " + FailureReason(held), options);
    problem.result = held.known_result();
    return problem;
}

// The value may have been set by another program, or by a set without a journal.
Problem SetSince(const Step& step, const Data& held, const PutBackOptions& options) {
    Problem problem =
        LeftSetting(step, "it was set since, to " + ShownText(step.setting, held), options);
    problem.remedy = options.fix_if_set_since;
    return problem;
}

bool IsOfChange(const Step& step, const Data& held) {
    return IsSameValue(step.setting, held, *step.old_value) ||
           (step.new_value && IsSameValue(step.setting, held, *step.new_value));
}

// Returns the reason why the value stays as it is; nothing if it can be put back.
std::optional<Problem> ObstacleOf(const Step& step, const Answer& held,
                                  const PutBackOptions& options) {
    if (!held.ok()) {
        return Unreadable(step, held, options);
    }
    const bool may_replace = options.force || IsOfChange(step, held.data);
    return may_replace ? std::nullopt : std::optional(SetSince(step, held.data, options));
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
    const auto is_in = [&](const std::string& path) { return IsChangedBy(path, setting.row->id); };
    return setting.row->held_in.holder != Holder::kFile || std::ranges::any_of(foreign, is_in);
}

// Returns the file as the last of these changes has left it that has touched it; null if none has.
const FileImage* LastImage(const std::vector<const JournalEntry*>& changes,
                           const std::string& path) {
    for (auto change = changes.rbegin(); change != changes.rend(); ++change) {
        const auto image = std::ranges::find((*change)->after, path, &FileImage::path);
        if (image != (*change)->after.end()) {
            return &*image;
        }
    }
    return nullptr;
}

// True if the text of the file is that of a later change. No change leaves a file cut.
bool IsOfLater(const FileImage& now, FileCase found,
               const std::vector<const JournalEntry*>& later) {
    const FileImage* image = LastImage(later, now.path);
    return image != nullptr && (found == FileCase::kNew || now.HasContentsOf(*image));
}

// True if a setting in the file was put back alone, because the file has text of another program.
bool HasSettingPutBack(const JournalEntry& entry, const std::string& path) {
    return std::ranges::any_of(entry.steps, [&](const Step& step) {
        return Contains(entry.put_back, step.setting.name()) &&
               IsChangedBy(path, step.setting.row->id);
    });
}

// True if the bytes from before must not replace the file.
bool IsForeign(const FileImage& now, FileCase found, const JournalEntry& entry,
               const std::vector<const JournalEntry*>& later) {
    if (found == FileCase::kOld) {
        return false;
    }
    return found == FileCase::kOther || !MayWrite(now) || IsOfLater(now, found, later) ||
           HasSettingPutBack(entry, now.path);
}

bool HasStep(const JournalEntry* entry, const Setting& setting) {
    return std::ranges::any_of(
        entry->steps, [&](const Step& step) { return IsSameSetting(step.setting, setting); });
}

std::vector<std::string> ForeignFiles(const JournalEntry& entry) {
    std::vector<std::string> foreign;
    for (const FileImage& before : entry.before) {
        const FileImage now = ReadFileImage(before.path);
        if (IsForeign(now, CompareFile(now, entry), entry, {})) {
            foreign.push_back(now.path);
        }
    }
    return foreign;
}

// sed(1) replaces a file by a new one with the same mode and owner. After a power cut these may be
// lost and the new file be there. A finished change was flushed: somebody has set a mode since.
bool HasLostOwner(const FileImage& now, const FileImage& before, const JournalEntry& entry) {
    const bool is_same =
        now.mode == before.mode && now.owner == before.owner && now.group == before.group;
    return !entry.is_closed() && now.exists && before.exists && !is_same;
}

bool HasSameContents(const FileImage& now, const std::vector<FileImage>& images) {
    const auto same = std::ranges::find(images, now.path, &FileImage::path);
    return same == images.end() || now.HasContentsOf(*same);
}

bool ChangesAgent(const CopyTrial& trial) {
    return std::ranges::find(trial.then, velk::kSnmpFile, &FileImage::path) != trial.then.end();
}

// The result of a set in a private copy.
struct CopySet {
    bool is_possible = true;  // false: only the library can set the value
    std::optional<Problem> problem{};
};

// Puts one entry back. The steps of it are members because they share the result.
class Restoration {
  public:
    Restoration(const JournalEntry& entry, PutBackOptions options, const Device& device)
        : entry_(entry), options_(std::move(options)), device_(device), values_(device) {}

    PutBackResult Run();

  private:
    void WriteFiles();
    void WriteFile(const FileImage& now);
    int GiveBack(const FileImage& now, FileCase found) const;
    void LeaveFile(const std::string& path, int error);
    bool WasWrittenSinceBegin(const FileImage& now) const;
    void SetValues();
    void SetValueOf(const Step& step);
    bool IsForgotten(const Setting& setting) const;
    bool KeepsLaterValue(const Setting& setting) const;
    std::optional<Problem> SetValue(const Step& step);
    std::optional<Problem> NoteObstacle(const Step& step, const Answer& held);
    std::optional<Problem> SetOldValue(const Step& step);
    CopySet SetInCopy(const Step& step);
    void NoteCutFiles(const CopyTrial& trial);
    std::string SetByLibrary(const Step& step);
    void FlushFiles();
    void AddPutBack();

    const JournalEntry& entry_;
    const PutBackOptions options_;
    const Device& device_;
    Values values_;
    std::vector<std::string> foreign_;  // files that another program has written since
    std::vector<std::string> failed_;   // files that could not be written to disk
    std::vector<std::string> open_;     // settings that could not be put back
    bool restarts_agent_ = false;
    PutBackResult result_;
};

PutBackResult Restoration::Run() {
    WriteFiles();
    if (result_.is_locked) {
        return std::move(result_);
    }
    SetValues();
    // The agent reads its file at its start only.
    if (restarts_agent_ && !options_.at_boot) {
        (void)RunTool({"sudo", velk::kSnmpScript, "restart"}, kAgentTime);
    }
    FlushFiles();
    AddPutBack();
    return std::move(result_);
}

void Restoration::WriteFiles() {
    const LibraryLock lock(options_.lock_seconds);
    result_.is_locked = lock.is_busy();
    if (result_.is_locked) {
        return;
    }
    if (options_.first) {
        options_.first();
    }
    for (const FileImage& before : entry_.before) {
        if (!Contains(entry_.put_back, before.path)) {
            WriteFile(ReadFileImage(before.path));
        }
    }
}

void Restoration::WriteFile(const FileImage& now) {
    const FileCase found = CompareFile(now, entry_);
    if (IsForeign(now, found, entry_, options_.later) || WasWrittenSinceBegin(now)) {
        foreign_.push_back(now.path);
        return;
    }
    const int error = GiveBack(now, found);
    if (error == ESTALE) {
        foreign_.push_back(now.path);
        return;
    }
    if (error != 0) {
        LeaveFile(now.path, error);
        result_.has_changed = result_.has_changed || !ReadFileImage(now.path).HasContentsOf(now);
        return;
    }
    if (found == FileCase::kOld) {
        return;
    }
    result_.has_changed = true;
    restarts_agent_ = restarts_agent_ || now.path == velk::kSnmpFile;
}

int Restoration::GiveBack(const FileImage& now, FileCase found) const {
    const FileImage& before = ImageBefore(now.path, entry_);
    const int error = found == FileCase::kOld ? 0 : WriteFileImage(before, now);
    return error == 0 && HasLostOwner(now, before, entry_) ? RestoreOwner(before) : error;
}

void Restoration::LeaveFile(const std::string& path, int error) {
    result_.left.push_back(LeftFile(path, error, options_));
    failed_.push_back(path);
    result_.has_disk_failed = true;
}

bool Restoration::WasWrittenSinceBegin(const FileImage& now) const {
    return options_.begun_with != nullptr && !HasSameContents(now, *options_.begun_with);
}

void Restoration::SetValues() {
    for (const Step& step : StepsInOrder(entry_)) {
        if (!Contains(entry_.put_back, step.setting.name())) {
            SetValueOf(step);
        }
    }
}

void Restoration::SetValueOf(const Step& step) {
    const std::string name = step.setting.name();
    const bool is_of_daemon = step.setting.row->held_in.holder == Holder::kDaemon;
    if (KeepsLaterValue(step.setting)) {
        result_.kept.push_back(name);
    } else if (IsForgotten(step.setting)) {
        return;
    } else if (is_of_daemon && options_.at_boot) {
        result_.waits_for_daemon = true;
        open_.push_back(name);
    } else if (NeedsLibrary(step.setting, foreign_)) {
        if (std::optional<Problem> problem = SetValue(step)) {
            result_.left.push_back(std::move(*problem));
            open_.push_back(name);
        }
    }
}

// The port has lost the value of the change with the last start of the device.
bool Restoration::IsForgotten(const Setting& setting) const {
    return !options_.force && !entry_.is_closed() && setting.row->held_in.holder == Holder::kTool &&
           entry_.boot_id != RunningBootId();
}

bool Restoration::KeepsLaterValue(const Setting& setting) const {
    const auto sets = [&](const JournalEntry* later) { return HasStep(later, setting); };
    return !options_.force && std::ranges::any_of(options_.later, sets);
}

// Returns the problem if the setting is left.
std::optional<Problem> Restoration::SetValue(const Step& step) {
    if (!step.old_value) {
        return LeftSetting(step, std::string(kUnknownOld), options_);
    }
    const Answer held = values_.Get(step.setting);
    if (held.ok() && IsSameValue(step.setting, held.data, *step.old_value)) {
        return std::nullopt;
    }
    if (std::optional<Problem> obstacle = NoteObstacle(step, held)) {
        return obstacle;
    }
    std::optional<Problem> problem = SetOldValue(step);
    result_.has_changed = result_.has_changed || !problem;
    return problem;
}

std::optional<Problem> Restoration::NoteObstacle(const Step& step, const Answer& held) {
    std::optional<Problem> obstacle = ObstacleOf(step, held, options_);
    result_.set_since += obstacle && held.ok() ? 1 : 0;
    return obstacle;
}

std::optional<Problem> Restoration::SetOldValue(const Step& step) {
    if (step.setting.row->held_in.holder == Holder::kFile && !options_.force) {
        if (CopySet set = SetInCopy(step); set.is_possible) {
            return std::move(set.problem);
        }
    }
    const std::string failure = SetByLibrary(step);
    return failure.empty() ? std::nullopt : std::optional(LeftSetting(step, failure, options_));
}

// Another program may set the value after it was compared, and before the library sets it.
CopySet Restoration::SetInCopy(const Step& step) {
    for (int i = 0; i < kCopyTries; ++i) {
        const std::optional<CopyTrial> trial =
            TryInCopy(step.setting, *step.old_value, entry_.before);
        if (!trial) {
            return {.is_possible = false};
        }
        if (std::optional<Problem> obstacle = NoteObstacle(step, trial->held)) {
            return {.problem = std::move(obstacle)};
        }
        const int error = CarryOver(*trial);
        restarts_agent_ = restarts_agent_ || (error == 0 && ChangesAgent(*trial));
        if (error == 0) {
            return {};
        }
        if (error != ESTALE && error != EWOULDBLOCK) {
            NoteCutFiles(*trial);
            return {.problem = LeftSetting(step, strerror(error), options_)};
        }
    }
    return {.problem =
                LeftSetting(step, "another program changes its file again and again", options_)};
}

// A file that was emptied before its write failed is left to the next recover.
void Restoration::NoteCutFiles(const CopyTrial& trial) {
    for (const FileImage& now : trial.now) {
        if (!ReadFileImage(now.path).HasContentsOf(now)) {
            failed_.push_back(now.path);
            result_.has_disk_failed = true;
            result_.has_changed = true;
        }
    }
}

// Returns the reason of a failure; empty if the device holds the value.
std::string Restoration::SetByLibrary(const Step& step) {
    const Answer answer = device_.Set(step.setting, *step.old_value);
    if (!answer.ok()) {
        return FailureReason(answer);
    }
    const Answer held = values_.Get(step.setting);
    const bool is_held = held.ok() && IsSameValue(step.setting, held.data, *step.old_value);
    return is_held ? "" : "the library reported success, but the device holds another value";
}

void Restoration::FlushFiles() {
    for (const FileImage& before : entry_.before) {
        if (const int error = FlushFile(before.path); error != 0) {
            LeaveFile(before.path, error);
        }
    }
}

// A setting is put back if the library has set it, or if all of its files are put back.
void Restoration::AddPutBack() {
    const auto is_failed = [&](const Step& step) {
        return std::ranges::any_of(failed_, [&](const std::string& path) {
            return IsChangedBy(path, step.setting.row->id);
        });
    };
    for (const FileImage& before : entry_.before) {
        if (!Contains(failed_, before.path) && !Contains(foreign_, before.path)) {
            result_.put_back.push_back(before.path);
        }
    }
    for (const Step& step : entry_.steps) {
        if (!Contains(open_, step.setting.name()) && !is_failed(step)) {
            result_.put_back.push_back(step.setting.name());
        }
    }
}

// A guardian tries again by itself.
void ReportPutBack(const JournalEntry& entry, const PutBackResult& result, Report& report) {
    if (result.is_locked) {
        Problem problem = LockedProblem("change " + entry.id + ": not put back", velk::kLockFile);
        problem.remedy = HasGuardian(entry) ? "" : "'velkctl recover' takes it back after that";
        report.Complain(problem);
    }
    for (const Problem& problem : result.left) {
        report.Complain(problem);
    }
    for (const std::string& name : result.kept) {
        report.Note(name + ": keeps its value, which a later change has set");
    }
}

// Without room for the state, the entry is removed: otherwise a later run would take back settings
// of others.
void CloseWhole(OpenChange& change, Report& report) {
    const int error = change.Advance(EntryState::kReverted);
    if (error != 0 && !change.Discard()) {
        report.Note(JournalProblem("the journal may call change " + change.entry().id +
                                       " interrupted, although it is put back",
                                   error));
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
        return now.HasContentsOf(*image) ||
               (MayBeMix(now, *image, entry) && IsMixOf(now.bytes, before.bytes, image->bytes));
    };
    if (std::ranges::any_of(own, is_own)) {
        return FileCase::kNew;
    }
    if (!now.exists && !entry.is_closed()) {
        return FileCase::kCut;  // the change was interrupted between a removal and its record
    }
    const auto is_cut = [&](const FileImage* image) {
        return IsCutOf(now, *image) ||
               (MayBeMix(now, *image, entry) && IsCutMixOf(now.bytes, before.bytes, image->bytes));
    };
    const bool was_cut = IsCutOf(now, before) || std::ranges::any_of(own, is_cut);
    return was_cut ? FileCase::kCut : CompareWithEditCopy(now, entry);
}

PutBackResult PutBack(const JournalEntry& entry, PutBackOptions options, const Device& device) {
    return Restoration(entry, std::move(options), device).Run();
}

PutBackResult PutBackOpen(OpenChange& change, PutBackOptions options, const Device& device,
                          Report& report) {
    if (change.is_not_begun()) {
        return {};
    }
    // Without this state on disk the files are still put back: they are the reason for the journal.
    if (change.entry().state != EntryState::kReverting) {
        (void)change.Advance(EntryState::kReverting);
    }
    PutBackResult result = PutBack(change.entry(), std::move(options), device);
    ReportPutBack(change.entry(), result, report);
    return result;
}

// The next try leaves out the items that were put back.
void CloseTakenBack(OpenChange& change, const PutBackResult& result, Report& report) {
    if (result.is_whole()) {
        CloseWhole(change, report);
    } else if (!result.is_locked) {
        change.RecordPutBack(result.put_back);
        (void)change.Advance(result.left.empty() ? EntryState::kReverting : EntryState::kStuck);
    }
}

void LeaveStuck(OpenChange& change, const PutBackResult& result) {
    change.RecordPutBack(result.put_back);
    (void)change.Advance(EntryState::kStuck);
}

std::string FindCutFile(const JournalEntry& entry) {
    const auto cut = std::ranges::find_if(entry.before, [&](const FileImage& before) {
        return CompareFile(ReadFileImage(before.path), entry) == FileCase::kCut;
    });
    return cut == entry.before.end() ? "" : cut->path;
}

std::vector<Problem> FindObstacles(const JournalEntry& entry, const PutBackOptions& options,
                                   const Device& device) {
    Values values(device);
    const std::vector<std::string> foreign = ForeignFiles(entry);
    std::vector<Problem> obstacles;
    for (const Step& step : entry.steps) {
        if (!NeedsLibrary(step.setting, foreign)) {
            continue;
        }
        std::optional<Problem> obstacle =
            step.old_value ? ObstacleOf(step, values.Get(step.setting), options)
                           : LeftSetting(step, std::string(kUnknownOld), options);
        if (obstacle) {
            obstacles.push_back(std::move(*obstacle));
        }
    }
    return obstacles;
}

}  // namespace velkctl
