// result_file_checks.cpp - the file in which the library reads the output of tools.
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"

namespace velkctl {

// The next reading overwrites a file of the caller's own. It removes any other file, if the caller
// may remove it; if not, nothing is read.
Findings CheckResultFile() {
    struct stat facts {};
    if (lstat(velk::kResultFile, &facts) == -1) {
        return {};
    }
    const Finding about{.subject = "link-speed and the address and netmask of a lease",
                        .file = velk::kResultFile,
                        .remedy = RemovalOf(velk::kResultFile, facts),
                        .affected = SettingsReadWith()};
    const std::string in_the_way =
        KindOf(facts.st_mode) + " is in the place of the output of tools";
    if (S_ISREG(facts.st_mode) && facts.st_nlink == 1 && facts.st_uid == geteuid()) {
        return {about.Warning("may not have been read", "a result was left, " + AgeOf(facts) +
                                                            " old; the next one overwrites it")};
    }
    if (MayRemove(velk::kResultFile, facts)) {
        return {
            about.Warning("may not have been read", in_the_way + "; the next reading removes it")};
    }
    return {about.With(Impact::kReading).Problem("cannot be read", in_the_way)};
}

}  // namespace velkctl
