// leftovers_checks.cpp - what the library left behind, or what others have put in its places.
#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "frame/command_output.h"
#include "velkctl/doctor/age.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/query_places.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kFolder = "/var/tmp";
constexpr mode_t kShared = S_ISVTX | S_IWOTH;

struct Edited {
    std::string_view target;
    std::string_view settings;
};

constexpr std::array<Edited, 6> kEdited{{
    {"/etc/network/interfaces", "method, address, netmask and gateway"},
    {"/etc/dhclient.conf", "method, dhcp-dns and dhcp-ntp"},
    {"/etc/dhclient-exit-hooks", "apipa, dhcp-notice and dhcp-ntp"},
    {"/sbin/dhclient-script", "dhcp-dns"},
    {"/var/cron/tabs/root", "ntp, ntp-server and web-update"},
    {"/var/libvelk/libvelk", "administrator and location"},
}};

Finding FindingOn(Severity severity, std::string_view subject, std::string effect, std::string what,
                  const std::string& path) {
    struct stat facts {};
    const bool is_folder = lstat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    return {severity,
            std::string(subject),
            std::move(effect),
            std::move(what),
            path,
            0,
            (is_folder ? "rm -r " : "rm ") + path};
}

std::string CopyOf(std::string_view target) {
    return std::string(kFolder).append(target.substr(target.rfind('/')));
}

// Where everybody may write, the kernel may keep even root from opening another user's file as one
// to be made, as the library does.
bool IsProtected(const struct stat& facts) {
    struct stat folder {};
    if (stat(std::string(kFolder).c_str(), &folder) == -1 ||
        (folder.st_mode & kShared) != kShared) {
        return false;
    }
    const TextFile level = ReadTextFile("/proc/sys/fs/protected_regular");
    const bool is_on = level.bytes.starts_with('1') || level.bytes.starts_with('2');
    return is_on && facts.st_uid != geteuid() && facts.st_uid != folder.st_uid;
}

bool MayOpen(const std::string& path) {
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

// An edit copy that is there.
Finding JudgeCopy(const Edited& edited, const std::string& path, const struct stat& facts) {
    if (!S_ISREG(facts.st_mode)) {
        const std::string effect =
            S_ISFIFO(facts.st_mode) ? "wait for ever when set" : "cannot be set";
        return FindingOn(Severity::kProblem, edited.settings, effect,
                         KindOf(facts.st_mode) + " stands where the edit copy is made", path);
    }
    if (!MayOpen(path) || IsProtected(facts)) {
        return FindingOn(Severity::kProblem, edited.settings, "cannot be set",
                         "an edit copy of another user, " + AgeOf(facts) + " old, is in the way",
                         path);
    }
    struct stat target {};
    const bool is_shorter =
        stat(std::string(edited.target).c_str(), &target) == 0 && facts.st_size < target.st_size;
    const std::string size = facts.st_size == 0 ? ", empty"
                             : is_shorter       ? ", shorter than the file"
                                                : "";
    return FindingOn(Severity::kWarning, edited.settings, "may not have been set",
                     "an edit copy was left behind, " + AgeOf(facts) + " old" + size +
                         "; the next set overwrites it",
                     path);
}

// In a folder that is everybody's to write, only the owner of a file may remove it.
bool MayRemove(const std::string& folder, const struct stat& facts) {
    struct stat folder_facts {};
    if (geteuid() == 0 || stat(folder.c_str(), &folder_facts) == -1) {
        return true;
    }
    return (folder_facts.st_mode & S_ISVTX) == 0 || facts.st_uid == geteuid() ||
           folder_facts.st_uid == geteuid();
}

// A reply socket that no process has bound.
Finding JudgeReplySocket(const struct stat& facts) {
    constexpr std::string_view kSettings = "wireless settings";
    if (S_ISDIR(facts.st_mode) || !MayRemove("/tmp", facts)) {
        return FindingOn(Severity::kProblem, kSettings, "can be neither read nor set",
                         KindOf(facts.st_mode) +
                             " that this user may not remove stands where the reply socket is made",
                         kReplySocket);
    }
    return FindingOn(Severity::kWarning, kSettings, "may not have been read",
                     "a reply socket that nobody listens at was left behind, " + AgeOf(facts) +
                         " old; the next query replaces it",
                     kReplySocket);
}

Finding JudgeSemaphore(const struct stat& facts) {
    constexpr std::string_view kSettings = "wireless settings";
    if (!IsSemaphore(facts)) {
        return FindingOn(Severity::kProblem, kSettings, "end the program that reads them",
                         KindOf(facts.st_mode) + " of " + std::to_string(facts.st_size) +
                             " bytes stands where the semaphore is made",
                         kSemaphore);
    }
    if (faccessat(AT_FDCWD, kSemaphore, R_OK | W_OK, AT_EACCESS) == -1) {
        return FindingOn(Severity::kProblem, kSettings, "can be neither read nor set",
                         "a semaphore of another user, " + AgeOf(facts) + " old, is in the way",
                         kSemaphore);
    }
    return FindingOn(Severity::kWarning, kSettings, "may not have been read",
                     "a semaphore was left behind, " + AgeOf(facts) +
                         " old; the next query may be answered before it listens",
                     kSemaphore);
}

}  // namespace

Findings CheckEditCopies() {
    Findings findings;
    for (const Edited& edited : kEdited) {
        const std::string path = CopyOf(edited.target);
        struct stat facts {};
        if (lstat(path.c_str(), &facts) == 0) {
            findings.push_back(JudgeCopy(edited, path, facts));
        }
    }
    return findings;
}

Findings CheckResultFile() {
    struct stat facts {};
    if (lstat(velk::kResultFile, &facts) == -1) {
        return {};
    }
    const std::string_view settings = "link-speed, and what is read from ifconfig,";
    if (!S_ISREG(facts.st_mode)) {
        return {FindingOn(Severity::kProblem, settings, "cannot be read",
                          KindOf(facts.st_mode) + " stands where tools write their output",
                          velk::kResultFile)};
    }
    if (!MayOpen(velk::kResultFile) || IsProtected(facts)) {
        return {FindingOn(Severity::kProblem, settings, "are read from an old result",
                          "another user's, " + AgeOf(facts) + " old, is in the way",
                          velk::kResultFile)};
    }
    return {
        FindingOn(Severity::kWarning, settings, "may not have been read",
                  "a result was left behind, " + AgeOf(facts) + " old; the next one overwrites it",
                  velk::kResultFile)};
}

Findings CheckQueryRemains() {
    if (IsBound(kReplySocket)) {
        return {};  // a query is under way
    }
    Findings findings;
    struct stat facts {};
    if (lstat(kReplySocket, &facts) == 0) {
        findings.push_back(JudgeReplySocket(facts));
    }
    if (lstat(kSemaphore, &facts) == 0) {
        findings.push_back(JudgeSemaphore(facts));
    }
    return findings;
}

}  // namespace velkctl
