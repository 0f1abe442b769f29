// files_checks.cpp - whether the library's files are there and may be written.
#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/find_row.h"

namespace velkctl {
namespace {

// The effect on the settings of a file that cannot be used.
struct Loss {
    std::string_view path;
    std::string_view effect;
    Severity severity = Severity::kProblem;
    Impact impact = Impact::kNothing;
};

constexpr Loss kEverything{"", "can be neither read nor set", Severity::kProblem, Impact::kSetting};

// Files that hold no setting themselves.
constexpr std::array<Loss, 3> kLosses{{
    {velk::kSnmpFile, "do not reach the SNMP agent"},
    {velk::kSupportList, "are not recognised but for the built-in one", Severity::kWarning},
    {velk::kUsbDevices, "are never found", Severity::kWarning},
}};

// Missing files. The library makes the resolver's file, and reads some settings without the others.
constexpr std::array<Loss, 3> kLossesByAbsence{{
    {velk::kDhcpConfigFile, "cannot be set", Severity::kProblem, Impact::kSetting},
    {velk::kClientScript, "cannot be set", Severity::kProblem, Impact::kSetting},
    {velk::kResolverFile, "cannot be read until it is set", Severity::kWarning, Impact::kReading},
}};

// The check of one file.
class FileCheck {
  public:
    explicit FileCheck(const DeviceFile& file)
        : file_(file),
          loss_(LossIn(kLosses, kEverything)),
          about_{.severity = loss_.severity,
                 .subject = file.subject,
                 .file = file.path,
                 .remedy = "put the device's own file in its place",
                 .affected = file.holds,
                 .impact = loss_.impact} {}

    Findings Run() const {
        const TextFile text = ReadTextFile(file_.path);
        switch (text.state) {
            case FileState::kText:
                return CheckText(text);
            case FileState::kMissing: {
                const Loss loss = LossIn(kLossesByAbsence, loss_);
                return {Found(loss.severity, loss.effect, "the file is missing",
                              "put the device's own file there")
                            .With(loss.impact)};
            }
            case FileState::kNotRegular:
                return {Found(loss_.severity, loss_.effect,
                              "a folder, a FIFO or a device is in its place")};
            case FileState::kUnreadable:
                return {Unreadable(text.error)};
            case FileState::kTooLarge:
                return {Found(loss_.severity, "cannot be examined", "the file is larger than 1 MiB")
                            .With(Impact::kNothing)};
        }
        return {};
    }

  private:
    template <size_t size>
    Loss LossIn(const std::array<Loss, size>& losses, const Loss& otherwise) const {
        const Loss* loss = FindRow(losses, std::string_view(file_.path), &Loss::path);
        return loss == nullptr ? otherwise : *loss;
    }

    Finding Found(Severity severity, std::string_view effect, std::string_view description,
                  std::string_view remedy = "") const {
        return severity == Severity::kProblem ? about_.Problem(effect, description, remedy)
                                              : about_.Warning(effect, description, remedy);
    }

    Finding Unreadable(int error) const {
        const std::string reason =
            std::string("this user may not read the file: ") + strerror(error);
        return file_.change == Change::kBySudo
                   ? about_.Warning("may not reach the SNMP agent", reason + "; not examined",
                                    "run the doctor as a user that may")
                   : Found(loss_.severity, loss_.effect, reason,
                           "run the program as a user that may, or let this one read the file");
    }

    Findings CheckText(const TextFile& text) const {
        Findings findings = CheckWriting();
        if (text.bytes.find('\0') != std::string::npos) {
            findings.push_back(Found(loss_.severity, "may be read and set wrongly",
                                     "the file has NUL bytes; it is no text"));
        }
        // The other files are read word by word, or number by number.
        const size_t count = CountCarriageReturns(text.lines);
        if (file_.change == Change::kByEdit && count > 0) {
            findings.push_back(
                about_.With(Impact::kReading)
                    .Problem("may be read and set wrongly",
                             std::to_string(count) + " of its " +
                                 std::to_string(text.lines.size()) + " lines end with CR LF",
                             std::string("sed -i 's/[[:cntrl:]]$//' ") + file_.path));
        }
        return findings;
    }

    Findings CheckWriting() const {
        const bool is_written = file_.change == Change::kByEdit || file_.change == Change::kWhole;
        if (!is_written || faccessat(AT_FDCWD, file_.path, W_OK, AT_EACCESS) == 0) {
            return {};
        }
        const int error = errno;
        return {about_.With(Impact::kSetting)
                    .Problem("cannot be set",
                             std::string("this user may not write the file: ") + strerror(error),
                             WritingRemedy(error))};
    }

    std::string WritingRemedy(int error) const {
        switch (error) {
            case EROFS:
                return "mount it writable";
            case EPERM:  // also for root
                return std::string("chattr -i ") + file_.path;
            default:
                return "run the program as a user that may, or let this one write the file";
        }
    }

    const DeviceFile& file_;
    const Loss loss_;
    const Finding about_;
};

}  // namespace

Findings CheckFiles() {
    Findings findings;
    for (const DeviceFile& file : DeviceFiles()) {
        Append(findings, FileCheck(file).Run());
    }
    return findings;
}

}  // namespace velkctl
