// files_checks.cpp - whether the library's files are there and may be written.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/device_files.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr char kPutFile[] = "put the device's own file in its place";

// What becomes of the settings of a file that cannot be used.
struct Loss {
    std::string_view path;
    std::string_view effect;
    Severity severity = Severity::kProblem;
    Hinders hinders = Hinders::kNothing;
};

constexpr Loss kEverything{.path = "",
                           .effect = "can be neither read nor set",
                           .severity = Severity::kProblem,
                           .hinders = Hinders::kSetting};

// Of files that hold no setting themselves.
constexpr std::array<Loss, 3> kLosses{{
    {.path = velk::kSnmpFile, .effect = "do not reach the SNMP agent"},
    {.path = velk::kSupportList,
     .effect = "are not recognised but for the built-in one",
     .severity = Severity::kWarning},
    {.path = velk::kUsbDevices, .effect = "are never found", .severity = Severity::kWarning},
}};

// Of files that are missing. The library makes the resolver's, and reads some settings without the
// others.
constexpr std::array<Loss, 3> kLossesByAbsence{{
    {.path = velk::kDhcpConfigFile, .effect = "cannot be set", .hinders = Hinders::kSetting},
    {.path = velk::kClientScript, .effect = "cannot be set", .hinders = Hinders::kSetting},
    {.path = velk::kResolverFile,
     .effect = "cannot be read until it is set",
     .severity = Severity::kWarning,
     .hinders = Hinders::kReading},
}};

template <size_t size>
Loss FindLoss(const std::array<Loss, size>& losses, std::string_view path, const Loss& otherwise) {
    const auto* found = std::ranges::find(losses, path, &Loss::path);
    return found == losses.end() ? otherwise : *found;
}

Loss LossOf(const DeviceFile& file) {
    return FindLoss(kLosses, file.path, kEverything);
}

Finding About(const DeviceFile& file, const Loss& loss) {
    return {.severity = loss.severity,
            .subject = std::string(file.subject),
            .effect = std::string(loss.effect),
            .file = file.path,
            .remedy = kPutFile,
            .concerns = ConcernsOf(file.holds),
            .hinders = loss.hinders};
}

Finding Missing(const DeviceFile& file) {
    Finding finding = About(file, FindLoss(kLossesByAbsence, file.path, LossOf(file)));
    finding.what = "the file is missing";
    finding.remedy = "put the device's own file there";
    return finding;
}

Finding NoFile(const DeviceFile& file) {
    Finding finding = About(file, LossOf(file));
    finding.what = "a folder, a FIFO or a device stands there";
    return finding;
}

Finding Unreadable(const DeviceFile& file, int error) {
    Finding finding = About(file, LossOf(file));
    finding.what = std::string("this user may not read the file: ") + strerror(error);
    finding.remedy = "run the program as a user that may, or let this one read the file";
    if (file.change == Change::kBySudo) {  // another user changes it
        finding.severity = Severity::kWarning;
        finding.effect = "may not reach the SNMP agent";
        finding.what.append("; not examined");
        finding.remedy = "run the doctor as a user that may";
    }
    return finding;
}

Finding TooLarge(const DeviceFile& file) {
    Finding finding = About(file, LossOf(file));
    finding.effect = "cannot be examined";
    finding.what = "the file is larger than 1 MiB";
    finding.hinders = Hinders::kNothing;
    return finding;
}

Finding HasNulBytes(const DeviceFile& file) {
    Finding finding = About(file, LossOf(file));
    finding.effect = "may be read and set wrongly";
    finding.what = "NUL bytes stand in the file; it is no text";
    return finding;
}

// Where a carriage return at the end of a line becomes a part of a word or value. The others are
// read word by word, or number by number.
bool IsChangedByCarriageReturns(const DeviceFile& file) {
    return file.change == Change::kByEdit;
}

Finding HasCarriageReturns(const DeviceFile& file, const Lines& lines) {
    Finding finding = About(file, kEverything);
    finding.effect = "may be read and set wrongly";
    finding.what = std::to_string(CountCarriageReturns(lines)) + " of its " +
                   std::to_string(lines.size()) + " lines end with CR LF";
    finding.remedy = std::string("sed -i 's/[[:cntrl:]]$//' ") + file.path;
    finding.hinders = Hinders::kReading;
    return finding;
}

Findings CheckText(const DeviceFile& file, const TextFile& text) {
    Findings findings;
    if (text.bytes.find('\0') != std::string::npos) {
        findings.push_back(HasNulBytes(file));
    }
    if (IsChangedByCarriageReturns(file) && CountCarriageReturns(text.lines) > 0) {
        findings.push_back(HasCarriageReturns(file, text.lines));
    }
    return findings;
}

// What makes a file writable, after what faccessat(2) said about it.
std::string RemedyFor(int error, const std::string& path) {
    switch (error) {
        case EROFS:
            return "mount it writable";
        case EPERM:  // not even root may
            return "chattr -i " + path;
        default:
            return "run the program as a user that may, or let this one write the file";
    }
}

// A file that is there and has been read.
Findings CheckWriting(const DeviceFile& file) {
    const bool is_written = file.change == Change::kByEdit || file.change == Change::kWhole;
    if (!is_written || faccessat(AT_FDCWD, file.path, W_OK, AT_EACCESS) == 0) {
        return {};
    }
    const int error = errno;
    Finding finding = About(file, kEverything);
    finding.effect = "cannot be set";
    finding.what = std::string("this user may not write the file: ") + strerror(error);
    finding.remedy = RemedyFor(error, file.path);
    return {finding};
}

Findings CheckReadable(const DeviceFile& file, const TextFile& text) {
    Findings findings = CheckWriting(file);
    Append(findings, CheckText(file, text));
    return findings;
}

Findings CheckFile(const DeviceFile& file) {
    const TextFile text = ReadTextFile(file.path);
    switch (text.state) {
        case FileState::kText:
            return CheckReadable(file, text);
        case FileState::kMissing:
            return {Missing(file)};
        case FileState::kNotRegular:
            return {NoFile(file)};
        case FileState::kUnreadable:
            return {Unreadable(file, text.error)};
        case FileState::kTooLarge:
            return {TooLarge(file)};
    }
    return {};
}

}  // namespace

Findings CheckFiles() {
    Findings findings;
    for (const DeviceFile& file : DeviceFiles()) {
        Append(findings, CheckFile(file));
    }
    return findings;
}

}  // namespace velkctl
