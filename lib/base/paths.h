// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// paths.h - every path of the device that the library or the programs around it use.
#ifndef VELK_BASE_PATHS_H_
#define VELK_BASE_PATHS_H_

namespace velk {

// Files that hold settings.
inline constexpr char kInterfacesFile[] = "/etc/network/interfaces";
inline constexpr char kDhcpConfigFile[] = "/etc/dhclient.conf";
inline constexpr char kExitHooks[] = "/etc/dhclient-exit-hooks";
inline constexpr char kClientScript[] = "/sbin/dhclient-script";
inline constexpr char kResolverFile[] = "/etc/resolv.dnsmasq.conf";
inline constexpr char kIdentityFile[] = "/var/libvelk/libvelk";
inline constexpr char kSnmpFile[] = "/usr/local/share/etc/snmp/snmpd.conf";
inline constexpr char kCrontab[] = "/var/cron/tabs/root";
inline constexpr char kNtpLog[] = "/var/libvelk/ntp.log";
inline constexpr char kLibraryFolder[] = "/var/libvelk";

// The journal of velkctl and the lock between its runs.
inline constexpr char kJournalFolder[] = "/var/libvelk/journal";
inline constexpr char kJournalLock[] = "/var/libvelk/journal/lock";

// Programs that the DHCP client's exit hooks start.
inline constexpr char kLinkLocalDaemon[] = "/usr/sbin/avahi-autoipd";
inline constexpr char kClockSetter[] = "/usr/bin/ntpdate";
inline constexpr char kFinishNotice[] = "/sbin/printdhcpnotice.pl";
inline constexpr char kStartNotice[] = "/sbin/printdhcpstart.pl";

// The init script of the SNMP agent.
inline constexpr char kSnmpScript[] = "/etc/init.d/snmpd";

// The tool that shows whether the cable is in, and the script that cron runs for the web update.
inline constexpr char kEthtool[] = "/usr/sbin/ethtool";
inline constexpr char kWebUpdater[] = "/usr/bin/web_contents_updater.pl";

// The former address of the wired port, kept by another program of the device.
inline constexpr char kOldAddressFile[] = "/tmp/oldIPAddress";

// The leases of the DHCP client.
inline constexpr char kLeaseFolder[] = "/var/lib/dhcp";

// The wireless adapters that the device supports, and the attached USB devices.
inline constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";
inline constexpr char kUsbDevices[] = "/proc/bus/usb/devices";

// The kernel's routes, see proc(5).
inline constexpr char kRoutingTable[] = "/proc/net/route";

// The system log's files, without their number.
inline constexpr char kSyslogPrefix[] = "/var/log/syslog/syslog_info.log.";

// The folder of edit copies, of tools' results and of the lock between programs.
inline constexpr char kEditFolder[] = "/var/tmp";
inline constexpr char kResultFile[] = "/var/tmp/get_result";
inline constexpr char kLockFile[] = "/var/tmp/vklib_lock";

// The sockets and the semaphore of a query to the wireless daemon.
inline constexpr char kSocketFolder[] = "/tmp";
inline constexpr char kRequestSocket[] = "/tmp/WlanAplToWlanSock";
inline constexpr char kReplySocket[] = "/tmp/WlanAplFromWlanSock";
inline constexpr char kSemaphoreName[] = "/WlanAplRecvSem";  // for sem_open(3)
inline constexpr char kSemaphoreFolder[] = "/dev/shm";
inline constexpr char kSemaphoreFile[] = "/dev/shm/sem.WlanAplRecvSem";

}  // namespace velk

#endif  // VELK_BASE_PATHS_H_
