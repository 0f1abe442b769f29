// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// files_before.cpp - the contents of a setting's files before a set.
#include "velkctl/call/files_before.h"

#include "velkctl/call/answer.h"
#include "velkctl/call/edit_copy.h"

namespace velkctl {
namespace {

// The library writes a newline after the last line: a file without it was cut.
std::string LossOf(const TextFile& before, const TextFile& after) {
    if (before.bytes.empty() || after.state != FileState::kText) {
        return {};
    }
    if (after.bytes.empty()) {
        return "is empty since this set";
    }
    return before.bytes.ends_with('\n') && !after.bytes.ends_with('\n') ? "was cut by this set"
                                                                        : "";
}

// Returns the end of a message: the path of the lost text, if a copy has it.
std::string EditCopyAdvice(const DeviceFile& file) {
    for (const EditCopy& copy : FindEditCopies()) {
        if (copy.file != &file) {
            continue;
        }
        if (copy.state == EditState::kCut) {
            return "the rest is in its edit copy " + copy.path + ", see 'velkctl doctor'";
        }
        if (copy.state == EditState::kUnproven) {
            return copy.path +
                   " may be the only complete text; look at it before you remove it, see 'velkctl "
                   "doctor'";
        }
    }
    return "no edit copy has the rest: restore it before the device restarts";
}

}  // namespace

FilesBefore::FilesBefore(const Setting& setting) {
    for (const DeviceFile& file : DeviceFiles()) {
        if (IsChangedBy(file, setting.row->id)) {
            files_.push_back({&file, ReadTextFile(file.path)});
        }
    }
}

FilesBefore::FilesBefore(const Setting& setting, const Device& device) : FilesBefore(setting) {
    if (!setting.can_get() || setting.row->held_in.holder != Holder::kFile) {
        return;
    }
    const Answer answer = device.Get(setting);
    if (answer.ok()) {
        value_ = setting.row->kind->Print(answer.data);
    }
}

std::string FilesBefore::Losses() const {
    std::string losses;
    for (const auto& [file, text] : files_) {
        const std::string loss = LossOf(text, ReadTextFile(file->path));
        if (!loss.empty()) {
            losses.append(losses.empty() ? "" : "; ").append(file->path).append(" ").append(loss);
            losses.append(", and ").append(EditCopyAdvice(*file));
        }
    }
    return losses;
}

}  // namespace velkctl
