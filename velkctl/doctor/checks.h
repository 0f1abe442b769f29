// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// checks.h - the doctor's checks, one subject each. None changes anything.
#ifndef VELKCTL_DOCTOR_CHECKS_H_
#define VELKCTL_DOCTOR_CHECKS_H_

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {

// The time of one get, in seconds. One that fails may wait for the system log.
inline constexpr int kLongestGet = 5;

// Runs every check, the wireless daemon's last.
Findings ExamineDevice(Report& report);

// Returns the findings that affect the setting. Runs only the checks that can have one, and does
// not query the wireless daemon. `value` is the value that was set, for the fix; empty if unknown.
Findings ExamineFor(const Setting& setting, std::string_view value = {});

// The library's files and folders: whether they exist and can be written. The other checks of files
// return nothing if the file cannot be read.
Findings CheckFiles();
Findings CheckFolders();
// Returns a text if more than half of the library's files are missing; empty on a device.
std::string DescribeOtherMachine();

Findings CheckInterfaces();  // /etc/network/interfaces
// The same for one setting of the file. The fix for a missing line has the value; a placeholder if
// it is empty.
Findings CheckInterfacesFor(const Setting& setting, std::string_view value);
Findings CheckExitHooks();     // /etc/dhclient-exit-hooks
Findings CheckDhcpConfig();    // /etc/dhclient.conf
Findings CheckClientScript();  // /sbin/dhclient-script
Findings CheckDhcpClients();   // those that run
Findings CheckTimeEntry();     // ntpdate in the crontab
Findings CheckWebUpdate();     // the updater in the crontab
Findings CheckIdentity();      // the SNMP agent's configuration

// Returns a finding if a second "#" before the position would keep the line switched off. `noun` is
// the command, call or entry that the line is.
Findings CheckMarks(const Finding& about, std::string_view line, size_t position,
                    std::string_view noun);

// Returns the line that an address is read from, even if it is correct. Empty for other settings.
Findings ValueLineOf(const Setting& setting);

Findings CheckTools();
// Returns the names and paths of the tools that the library runs, each once.
std::vector<std::string> ToolNames();
Findings CheckToolsFor(const Setting& setting);
// Checks the tools that restart an interface. The library ignores their exit status.
Findings CheckRestartTools();

Findings CheckIfconfig();
// Returns a finding if the library cannot read this output of ifconfig.
Findings CheckIfconfigOutput(std::string_view output);

Findings CheckEditCopies();    // in /var/tmp
Findings CheckResultFile();    // in /var/tmp
Findings CheckQueryRemains();  // reply socket and semaphore
Findings CheckLock();
Findings CheckJournal();
Findings CheckAdapter();

// Queries the daemon, for a few seconds at most.
Findings CheckDaemon(Report& report);
// True if the daemon is not running and no adapter is attached.
bool DaemonLacksAdapter();
// Returns a finding if the wireless daemon of the setting is not running. Does not query it.
Findings CheckDaemonRuns(const Setting& setting);
// Returns the finding that the daemon of the setting answers with another value than it was sent.
// Does not query it.
Findings DaemonDiffers(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_CHECKS_H_
