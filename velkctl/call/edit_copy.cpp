// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_copy.cpp - the copies in which the library edits files, and the state of each edit.
#include "velkctl/call/edit_copy.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string_view>

#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/files/file_facts.h"

namespace velkctl {
namespace {

constexpr mode_t kCopyMode = 0600;
// The mode in a host with different real and effective users. It proves nothing: other programs of
// root usually make files of this mode.
constexpr mode_t kCopyModeForTwoUsers = 0644;
constexpr mode_t kModeBits = 07777;
constexpr size_t kMostShown = 10;

std::string CopyPathOf(const DeviceFile& file) {
    const std::string path = file.path;
    return velk::kEditFolder + path.substr(path.rfind('/'));
}

// Every user can put a file or a link there, or rename a file of root there. The library makes a
// new copy with one name and this mode.
bool IsMadeWith(mode_t mode, const struct stat& facts, const char* file) {
    if (!S_ISREG(facts.st_mode) || facts.st_nlink != 1 || (facts.st_mode & kModeBits) != mode) {
        return false;
    }
    struct stat edited {};
    return facts.st_uid == 0 || facts.st_uid == geteuid() ||
           (stat(file, &edited) == 0 && facts.st_uid == edited.st_uid);
}

bool IsEmpty(const TextFile& file) {
    return file.state == FileState::kMissing ||
           (file.state == FileState::kText && file.bytes.empty());
}

// The library writes complete lines and copies a complete copy into place. A copy without a newline
// at its end was not copied. If the file is empty, the copy is the only text.
EditState StateBetween(const TextFile& copy, const TextFile& file) {
    if (IsEmpty(copy)) {
        return EditState::kPart;
    }
    if (IsEmpty(file)) {
        return EditState::kCut;
    }
    if (copy.state != FileState::kText || file.state != FileState::kText) {
        return EditState::kUncompared;
    }
    if (copy.bytes == file.bytes) {
        return EditState::kInPlace;
    }
    if (!copy.bytes.ends_with('\n') || file.bytes.starts_with(copy.bytes)) {
        return EditState::kPart;
    }
    return copy.bytes.starts_with(file.bytes) ? EditState::kCut : EditState::kDiffers;
}

Lines LinesMissingFrom(const Lines& present, Lines lines) {
    const std::set<std::string_view> known(present.begin(), present.end());
    std::erase_if(lines, [&](const std::string& line) {
        return Trimmed(line).empty() || known.contains(line);
    });
    return lines;
}

// A file without proof is not compared line by line: its lines must not be copied unread.
EditState StateWithoutProof(const EditCopy& copy) {
    if (!IsMadeWith(kCopyModeForTwoUsers, copy.facts, copy.file->path)) {
        return EditState::kForeign;
    }
    const EditState state = StateBetween(ReadTextFile(copy.path), ReadTextFile(copy.file->path));
    return state == EditState::kCut ? EditState::kUnproven : EditState::kForeign;
}

void Compare(EditCopy& copy) {
    const TextFile text = ReadTextFile(copy.path);
    const TextFile file = ReadTextFile(copy.file->path);
    copy.state = copy.facts.st_size == 0 ? EditState::kPart : StateBetween(text, file);
    if (text.state == FileState::kText) {
        copy.has_end = text.bytes.ends_with('\n');
    }
    if (text.state == FileState::kText && (file.state == FileState::kText || IsEmpty(file))) {
        copy.new_lines = LinesMissingFrom(file.lines, text.lines);
    }
}

std::optional<EditCopy> FindCopyOf(const DeviceFile& file) {
    EditCopy copy{&file, CopyPathOf(file), {}, EditState::kForeign};
    if (lstat(copy.path.c_str(), &copy.facts) == -1) {
        return std::nullopt;
    }
    if (IsMadeWith(kCopyMode, copy.facts, file.path)) {
        Compare(copy);
    } else {
        copy.state = StateWithoutProof(copy);
    }
    return copy;
}

// Returns the existing copies of the wanted files.
std::vector<EditCopy> FindCopies(const std::function<bool(const DeviceFile&)>& is_wanted) {
    std::vector<EditCopy> copies;
    for (const DeviceFile& file : DeviceFiles()) {
        if (file.change != Change::kByEdit || !is_wanted(file)) {
            continue;
        }
        if (std::optional<EditCopy> copy = FindCopyOf(file)) {
            copies.push_back(*copy);
        }
    }
    return copies;
}

// Given a path, flock(1) would create the lock file with a mode of its own, and the kernel may
// refuse even root to open another user's file that way. Without a lock file there is no lock to
// take.
std::string UnderLock(const std::string& commands) {
    if (access(velk::kLockFile, F_OK) == -1) {
        return commands;
    }
    return "(flock 9 && " + commands + ") 9< " + velk::kLockFile;
}

}  // namespace

std::vector<EditCopy> FindEditCopies() {
    return FindCopies([](const DeviceFile&) { return true; });
}

std::vector<EditCopy> FindEditCopies(const Command& command) {
    if (command.type != VELK_SET) {
        return {};
    }
    return FindCopies([&](const DeviceFile& file) { return IsChangedBy(file, command.id); });
}

std::string DescribeNewLines(const EditCopy& copy) {
    if (!copy.new_lines) {
        return {};
    }
    const size_t count = copy.new_lines->size();
    const size_t shown = std::min(count, kMostShown);
    std::string lines;
    for (const std::string& line : std::span(*copy.new_lines).first(shown)) {
        lines.append(lines.empty() ? " " : ", ").append(Excerpt(line));
    }
    if (count > shown) {
        lines.append(" and ").append(std::to_string(count - shown)).append(" more");
    }
    return "; the copy would add" + (count == 0 ? " no line" : lines);
}

std::string AdviceToFinish(const EditCopy& copy) {
    return "compare: diff " + std::string(copy.file->path) + " " + copy.path +
           "; if the copy is right, write its text into " + copy.file->path + " as root";
}

std::string DiscardCommand(const EditCopy& copy) {
    return UnderLock(RemoveCommand(copy.path, copy.facts));
}

}  // namespace velkctl
