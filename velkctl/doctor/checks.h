// checks.h - the doctor's checks, one subject each. None changes anything.
#ifndef VELKCTL_DOCTOR_CHECKS_H_
#define VELKCTL_DOCTOR_CHECKS_H_

#include <array>
#include <string_view>

#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {

inline constexpr std::array<const char*, 2> kInterfaces{VELK_WIRED_INTERFACE,
                                                        VELK_WIRELESS_INTERFACE};

// Runs every check, the wireless daemon's last.
Findings ExamineDevice(Report& report);

// Returns the findings that affect the setting. Runs only the checks that can have one, and does
// not ask the wireless daemon.
Findings ExamineFor(const Setting& setting);

// The library's files and folders: whether they exist and can be written. The other checks of files
// return nothing if the file cannot be read.
Findings CheckFiles();
Findings CheckFolders();

Findings CheckInterfaces();    // /etc/network/interfaces
Findings CheckExitHooks();     // /etc/dhclient-exit-hooks
Findings CheckDhcpConfig();    // /etc/dhclient.conf
Findings CheckClientScript();  // /sbin/dhclient-script
Findings CheckTimeEntry();     // ntpdate in the crontab
Findings CheckWebUpdate();     // the updater in the crontab
Findings CheckIdentity();      // the SNMP agent's configuration

// Returns a finding if a second "#" before the position would keep the line switched off. `noun` is
// the command, call or entry that the line is.
Findings CheckMarks(const Finding& about, std::string_view line, size_t position,
                    std::string_view noun);

// The line that an address is read from, though nothing is wrong with it. Nothing for other
// settings.
Findings ValueLineOf(const Setting& setting);

Findings CheckTools();
Findings CheckToolsFor(const Setting& setting);
// The tools without which an interface cannot be restarted. The library ignores their exit status.
Findings CheckRestartTools();

Findings CheckIfconfig();
// Returns a finding if the library cannot read this output of ifconfig.
Findings CheckIfconfigOutput(std::string_view output);

Findings CheckEditCopies();    // in /var/tmp
Findings CheckResultFile();    // in /var/tmp
Findings CheckQueryRemains();  // reply socket and semaphore
Findings CheckLock();
Findings CheckAdapter();

// Asks the daemon, for a few seconds at most.
Findings CheckDaemon(Report& report);
// The setting's daemon, without asking it: it does not run.
Findings CheckDaemonRuns(const Setting& setting);
// The setting's daemon, without asking it: it answers with another value than it was sent.
Findings DaemonDiffers(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_CHECKS_H_
