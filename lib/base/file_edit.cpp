// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_edit.cpp - rewrites a system file line by line, through a copy.
#include "lib/base/file_edit.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/inherited_lock.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/shell.h"
#include "lib/base/target_guard.h"
#include "lib/base/users.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr mode_t kCopyMode = 0600;  // no other user changes it, or reads a crontab in it
// The shell of the real user must read the copy if the effective user is another.
constexpr mode_t kCopyModeForTwoUsers = 0644;

// Texts up to this size are gathered before they are written, so that a file of usual size is
// written at once. Longer ones, runs of kept lines, are written directly.
constexpr size_t kGatheredSize = 4 * 1024;

std::string CopyPath(const std::string& target) {
    return kEditFolder + target.substr(target.rfind('/'));
}

// The copy's mode does not depend on the umask, because cat(1) must be able to read it.
int CreateCopy(const std::string& path) {
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kCopyMode);
    if (fd != -1) {
        (void)fchmod(fd, HasTwoUsers() ? kCopyModeForTwoUsers : kCopyMode);
    }
    return fd;
}

// Always creates a new file. All users may write to the folder: an existing file may be a link to
// any file of the system, or belong to a user who changes the edit before it is put in place.
int OpenCopy(const std::string& path) {
    const int fd = CreateCopy(path);
    if (fd != -1 || errno != EEXIST) {
        return fd;
    }
    return unlink(path.c_str()) == 0 ? CreateCopy(path) : -1;
}

}  // namespace

FileEdit::FileEdit(const std::string& target)
    : target_(target),
      copy_path_(CopyPath(target)),
      reader_(target_.c_str()),
      copy_(OpenCopy(copy_path_)),
      copy_error_(copy_.get() == -1 ? errno : 0) {
}

bool FileEdit::ReadLine(std::string_view& line) {
    if (reader_.TakeBufferedLine(line)) {
        return true;
    }
    EndRun();  // the reader is about to overwrite it
    return reader_.ReadFullLine(line);
}

bool FileEdit::KeepLinesBefore(std::string_view start, std::string_view& line) {
    for (;;) {
        Keep(reader_.TakeBufferedLinesBefore(start));
        if (!ReadLine(line)) {
            return false;
        }
        if (line.starts_with(start)) {
            return true;
        }
        Keep(line);
    }
}

// A run and the line after it are in the reader's one block, or the run has ended: ReadLine() ends
// it before the block is overwritten. So their ends can be compared.
void FileEdit::Keep(std::string_view line) {
    if (run_.end() != line.begin()) {
        EndRun();
        run_ = line;
        return;
    }
    run_ = {run_.data(), run_.size() + line.size()};
}

void FileEdit::Write(std::string_view text) {
    EndRun();
    Add(text);
}

int FileEdit::Finish() {
    EndRun();
    Flush();
    reader_.Close();
    const UniqueFd whole_copy = CloseCopy();
    if (write_error_ != 0) {
        LogErrno("FileEdit write errno=%d:%s", write_error_);
        (void)unlink(copy_path_.c_str());  // half an edit is useless, and the folder may be full
        return LIB_VELK_FAILURE;
    }
    return PutInPlace(whole_copy.get());
}

// Closes the edit copy; an error shows that it was not written in full. Returns another descriptor
// of it: the text can be read through that even if the name is removed.
UniqueFd FileEdit::CloseCopy() {
    UniqueFd kept(fcntl(copy_.get(), F_DUPFD_CLOEXEC, 0));
    const bool is_kept = kept.get() != -1;
    if ((!is_kept || copy_.Reset() == -1) && write_error_ == 0) {
        write_error_ = errno;
    }
    copy_.Reset();
    return kept;
}

// Runs the lines of FileCopyAndDelete(), and checks the file between them.
int FileEdit::PutInPlace(int whole_copy) {
    const CommandLine copying = CopyingLine(copy_path_, target_);
    TargetGuard guard(target_, whole_copy);
    InheritedLock lock;
    (void)copying.Run();
    if (const int error = guard.Repair(); error != 0) {
        LogErrno("FileEdit mend errno=%d:%s", error);
        return LIB_VELK_FAILURE;  // the edit copy stays: only it has the complete text
    }
    if (!copying.fits()) {
        return LIB_VELK_SUCCESS;
    }
    (void)RemovingLine(copy_path_).Run();
    if (guard.has_repaired()) {
        Log("FileEdit mended %s", target_.c_str());
        lock.LeaveToTools();
    }
    // The line that removes the copy may have failed as well: another user's shell cannot remove
    // it.
    if (guard.has_repaired() || HasTwoUsers()) {
        (void)unlink(copy_path_.c_str());
    }
    return LIB_VELK_SUCCESS;
}

void FileEdit::EndRun() {
    Add(run_);
    run_ = {};
}

void FileEdit::Add(std::string_view text) {
    if (pending_.size() + text.size() > kGatheredSize) {
        Flush();
    }
    if (text.size() > kGatheredSize) {
        WriteOut(text);
    } else {
        pending_.append(text);
    }
}

void FileEdit::WriteOut(std::string_view text) {
    if (write_error_ == 0 && !WriteAll(copy_.get(), text)) {
        write_error_ = errno;
    }
}

void FileEdit::Flush() {
    WriteOut(pending_);
    pending_.clear();
}

}  // namespace velk
