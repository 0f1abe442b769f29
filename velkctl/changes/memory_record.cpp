// memory_record.cpp - the state before a change, kept in memory.
#include "velkctl/changes/memory_record.h"

#include <algorithm>
#include <cstring>

#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

bool TouchesFile(const ChangeSet& steps, const DeviceFile& file) {
    return std::ranges::any_of(steps, [&file](const SettingChange& step) {
        return IsChangedBy(file, step.setting.row->id);
    });
}

Problem FileProblem(const std::string& path, const std::string& failure, int error) {
    Problem problem{path + ": " + failure};
    problem.detail = strerror(error);
    problem.file = path;
    return problem;
}

}  // namespace

std::optional<BeginFailure> MemoryRecord::Begin(const ChangeSet& steps,
                                                const std::vector<std::string>& /*restarts*/,
                                                const Device& device) {
    for (const SettingChange& step : steps) {
        const Answer answer = step.setting.row->held_in.holder == Holder::kFile
                                  ? Answer{LIB_VELK_FAILURE}
                                  : device.Get(step.setting);
        if (answer.ok()) {
            values_.push_back({step.setting, answer.data});
        }
    }
    for (const DeviceFile& file : DeviceFiles()) {
        if (TouchesFile(steps, file)) {
            files_.push_back(ReadFileImage(file.path));
        }
        if (!files_.empty() && files_.back().error != 0) {
            return BeginFailure{FileProblem(file.path, "cannot be kept", files_.back().error)};
        }
    }
    return std::nullopt;
}

std::optional<Problem> MemoryRecord::Flush() {
    for (const FileImage& file : files_) {
        if (const int error = FlushFile(file.path); error != 0) {
            return FileProblem(file.path, "cannot be written to disk", error);
        }
    }
    return std::nullopt;
}

ExitStatus MemoryRecord::TakeBack(const Device& device, Report& report) {
    for (const FileImage& file : files_) {
        const bool is_old = ReadFileImage(file.path).HasContentsOf(file);
        if (const int error = is_old ? 0 : WriteFileImage(file); error != 0) {
            report.Complain(FileProblem(file.path, "could not be put back", error));
        }
    }
    for (const SettingChange& old : values_) {
        if (const Answer answer = device.Set(old.setting, old.value); !answer.ok()) {
            report.Complain(ProblemOf(old.setting.name() + ": could not be put back",
                                      old.setting.name(), answer));
        }
    }
    return ExitStatus::kFailed;
}

}  // namespace velkctl
