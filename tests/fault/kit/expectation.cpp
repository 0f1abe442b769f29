// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expectation.cpp - the expected answer and permitted remains of a request with a failing call.
#include "fault/kit/expectation.h"

#include <algorithm>
#include <span>

#include <fcntl.h>
#include <sys/file.h>

#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::kEditFolder;
using testkit::kLockFile;
using testkit::kNtpLog;
using testkit::kReplySocket;
using testkit::kResolverFile;
using testkit::kResultFile;
using testkit::kSemaphoreFile;
using testkit::kSupportList;
using testkit::kUsbDevices;

// Returns the failing calls: one, or one and all later ones.
std::span<const LoggedCall> FailedCalls(const Fault& fault, const Reference& reference) {
    const std::span<const LoggedCall> made(reference.log.Calls(*fault.kind.call));
    const auto first = static_cast<size_t>(fault.number - 1);
    return fault.reach == testkit::Reach::kThatOne ? made.subspan(first, 1) : made.subspan(first);
}

// The link is asked for again until there is an answer.
Notice NoticeOfLinkTool(const Fault& fault) {
    return fault.reach == testkit::Reach::kThatOne ? Notice::kNone : Notice::kNoCable;
}

bool AsksForTheLink(const std::string& line) {
    return line.starts_with("sudo /usr/sbin/ethtool ");
}

// For a file that cannot be opened, or not be read at all.
Notice NoticeOfUnreadable(const LoggedCall& call, const Fault& fault) {
    if (call.file == kSupportList || call.file == kUsbDevices) {
        return Notice::kNoAdapter;
    }
    if (call.file == kNtpLog) {
        return Notice::kNoResult;
    }
    return AsksForTheLink(call.line) ? NoticeOfLinkTool(fault) : Notice::kFailure;
}

// If the lock's file cannot be opened, it is opened once more to make it. A get continues if it
// cannot open the folder for its turn, or cannot make the result file before the shell does.
Notice NoticeOfOpen(const LoggedCall& call, const Fault& fault) {
    const bool is_made = call.file == kResultFile && (call.number & O_CREAT) != 0;
    if (call.file == kEditFolder || is_made) {
        return Notice::kNone;
    }
    const bool is_first = fault.number == 1 && fault.reach == testkit::Reach::kThatOne;
    return call.file == kLockFile && is_first ? Notice::kNone : NoticeOfUnreadable(call, fault);
}

Notice NoticeOfRead(const LoggedCall& call, const Fault& fault) {
    if (call.is_first) {
        return NoticeOfUnreadable(call, fault);
    }
    return call.read_before ? Notice::kCut : Notice::kNone;
}

// The kernel may report at the close that it could not write earlier. An edit copy is closed a
// second time when its text has been put in place.
Notice NoticeOfClose(const LoggedCall& call, const _velk_request& request) {
    const bool is_edited = IsEditCopy(call.file) && call.is_first;
    const bool is_resolver = call.file == kResolverFile && request.command_type == VELK_SET;
    return is_edited || is_resolver ? Notice::kFailure : Notice::kNone;
}

// With `is_reported`, system(3) itself reports the failure; without, a shell seems to have run.
Notice NoticeOfLine(const std::string& line, bool is_reported, const Fault& fault) {
    if (AsksForTheLink(line)) {
        return NoticeOfLinkTool(fault);
    }
    for (const char* printing : {"ifconfig > ", "sudo ethtool eth0 > "}) {
        if (line.starts_with(printing)) {
            return Notice::kFailure;  // there is nothing to read
        }
    }
    for (const char* deciding : {"sudo ethtool -s ", "sudo ifup eth0", "sudo ifconfig "}) {
        if (is_reported && line.starts_with(deciding)) {
            return Notice::kFailure;
        }
    }
    return Notice::kNone;
}

// From the removal of one tool's results on nothing runs, and the next tool's are read.
bool IsOldResultRead(const Fault& fault, const Reference& reference) {
    const bool seems_run = fault.kind.call == Call::kSystem && fault.kind.answer.result != -1;
    return seems_run &&
           FailedCalls(fault, reference).front().line == std::string("rm ") + kResultFile;
}

Notice NoticeOf(const LoggedCall& call, const Fault& fault, const _velk_request& request) {
    switch (*fault.kind.call) {
        case Call::kOpen:
            return NoticeOfOpen(call, fault);
        case Call::kRead:
            return NoticeOfRead(call, fault);
        case Call::kClose:
            return NoticeOfClose(call, request);
        case Call::kFlock:
            return call.file == kLockFile && (call.number & LOCK_EX) != 0 ? Notice::kFailure
                                                                          : Notice::kNone;
        case Call::kSystem:
            return NoticeOfLine(call.line, fault.kind.answer.result == -1, fault);
        case Call::kIoctl:
            return Notice::kNoAddress;
        case Call::kFchmod:
            return call.file.starts_with("socket") ? Notice::kFailure : Notice::kNone;
        case Call::kUnlink:
        case Call::kSemClose:
        case Call::kSemUnlink:
        case Call::kSleep:  // these three cannot fail
        case Call::kNanosleep:
        case Call::kClockNanosleep:
        case Call::kSyslog:
            return Notice::kNone;
        case Call::kWrite:
        case Call::kSocket:  // from here on the steps of a talk with the wireless daemon
        case Call::kConnect:
        case Call::kBind:
        case Call::kSendto:
        case Call::kSelect:
        case Call::kRecvfrom:
        case Call::kSemOpen:
        case Call::kSemPost:
            return Notice::kFailure;
    }
    return Notice::kFailure;
}

std::string LastWord(const std::string& line) {
    return line.substr(line.rfind(' ') + 1);
}

// If memory runs out, begun edits and tools' results remain as they are.
bool IsScratchOf(const Reference& reference, const std::string& path) {
    return std::ranges::any_of(reference.log.Calls(Call::kOpen), [&](const LoggedCall& call) {
        return call.file == path && (IsEditCopy(path) || path == kResultFile);
    });
}

// The copy is made beside the file, also of one that cannot be read. Results that cannot be read
// are not removed.
bool IsLeftByUnreadable(const std::string& path, const LoggedCall& call) {
    const bool is_copied = !IsEditCopy(call.file) && testkit::CopyOf(call.file) == path;
    return path == kResultFile ? call.file == kResultFile : is_copied;
}

}  // namespace

Expectation ExpectationOf(const Fault& fault, const Scene& scene, const _velk_request& request,
                          const Reference& reference) {
    if (!fault.kind.call) {
        return {Notice::kFailure, nullptr};
    }
    Expectation expectation;
    for (const LoggedCall& call : FailedCalls(fault, reference)) {
        const Notice notice = NoticeOf(call, fault, request);
        if (notice == Notice::kFailure && IsOldResultRead(fault, reference)) {
            return {Notice::kOldResult, &call};
        }
        if (notice != Notice::kNone) {
            expectation = {notice, &call};
        }
        const bool goes_on = notice == Notice::kNoCable && !scene.has_cable;
        if (notice != Notice::kNone && !goes_on) {
            break;
        }
    }
    return expectation;
}

std::set<std::string> FilesOfFailedLines(const Fault& fault, const Reference& reference) {
    std::set<std::string> files;
    if (fault.kind.call == Call::kSystem) {
        for (const LoggedCall& call : FailedCalls(fault, reference)) {
            files.insert(LastWord(call.line));
        }
    }
    return files;
}

bool MayBeLeft(const std::string& path, const Fault& fault, const Reference& reference) {
    if (!fault.kind.call) {
        return IsScratchOf(reference, path);
    }
    const Call call = *fault.kind.call;
    if (call == Call::kOpen || call == Call::kRead) {
        return IsScratchOf(reference, path) &&
               std::ranges::any_of(FailedCalls(fault, reference), [&](const LoggedCall& failed) {
                   return IsLeftByUnreadable(path, failed);
               });
    }
    if (call == Call::kSystem) {
        return FilesOfFailedLines(fault, reference).contains(path);
    }
    const bool is_socket = call == Call::kUnlink && path == kReplySocket;
    const bool is_semaphore = call == Call::kSemUnlink && path == kSemaphoreFile;
    return is_socket || is_semaphore;
}

bool IsEditCopy(const std::string& path) {
    return path.starts_with("/var/tmp/") && path != kLockFile && path != kResultFile;
}

}  // namespace fault
