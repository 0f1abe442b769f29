// checks.h - what the doctor looks at, one subject each. None changes anything.
#ifndef VELKCTL_DOCTOR_CHECKS_H_
#define VELKCTL_DOCTOR_CHECKS_H_

#include <string_view>

#include "velkctl/doctor/finding.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Whether the library's files and folders are there and may be written. The other checks of files
// say nothing about those that cannot be read.
Findings CheckFiles();
Findings CheckFolders();

Findings CheckInterfaces();    // /etc/network/interfaces
Findings CheckExitHooks();     // /etc/dhclient-exit-hooks
Findings CheckDhcpConfig();    // /etc/dhclient.conf
Findings CheckClientScript();  // /sbin/dhclient-script
Findings CheckTimeEntry();     // ntpdate in the crontab
Findings CheckWebUpdate();     // the updater in the crontab
Findings CheckIdentity();      // the SNMP agent's configuration

Findings CheckTools();
// Those that the setting needs.
Findings CheckToolsFor(const Setting& setting);
Findings CheckIfconfig();
Findings CheckEditCopies();    // in /var/tmp
Findings CheckResultFile();    // in /var/tmp
Findings CheckQueryRemains();  // reply socket and semaphore
Findings CheckLock();
// Asks the daemon, for a few seconds at most.
Findings CheckDaemon(Report& report);
// What there is to say, without asking it, when the daemon does not hold what it was sent. None for
// settings that are not its own.
Findings DaemonBehind(const Setting& setting);
// Whether the daemon runs that the setting is asked of. It is not asked.
Findings CheckDaemonRuns(const Setting& setting);
Findings CheckAdapter();

// What keeps a restart of an interface from its effect, which the library does not notice: the
// tools that bring it down and up.
Findings RestartObstacles();

// Says whether what ifconfig printed can be read back: the finding when it cannot.
Findings JudgeIfconfigOutput(std::string_view output);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_CHECKS_H_
