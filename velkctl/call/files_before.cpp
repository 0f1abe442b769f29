// files_before.cpp - what the files that a set changes held before it.
#include "velkctl/call/files_before.h"

#include "velkctl/call/edit_copy.h"

namespace velkctl {
namespace {

// The library ends the last line of what it writes.
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

std::string WhereTheRestIs(const DeviceFile& file) {
    for (const EditCopy& copy : FindEditCopies()) {
        if (copy.file != &file) {
            continue;
        }
        if (copy.state == EditState::kCut) {
            return "the rest is in its edit copy " + copy.path + ", see 'velkctl doctor'";
        }
        if (copy.state == EditState::kUnproven) {
            return copy.path +
                   " may be the only whole text; look at it before you remove it, see 'velkctl "
                   "doctor'";
        }
    }
    return "no edit copy has the rest: restore it before the device is restarted";
}

}  // namespace

FilesBefore::FilesBefore(const Setting& setting) {
    for (const DeviceFile& file : DeviceFiles()) {
        if (IsChangedBy(file, setting.row->id)) {
            files_.push_back({&file, ReadTextFile(file.path)});
        }
    }
}

std::string FilesBefore::Losses() const {
    std::string losses;
    for (const auto& [file, text] : files_) {
        const std::string loss = LossOf(text, ReadTextFile(file->path));
        if (!loss.empty()) {
            losses.append(losses.empty() ? "" : "; ").append(file->path).append(" ").append(loss);
            losses.append(", and ").append(WhereTheRestIs(*file));
        }
    }
    return losses;
}

}  // namespace velkctl
