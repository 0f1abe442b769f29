// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// paths.h - the paths of the device as the tests expect them, independent of the library's list in
// lib/base/paths.h. A unit test compares both lists, path by path.
#ifndef TESTS_SUPPORT_PATHS_H_
#define TESTS_SUPPORT_PATHS_H_

namespace testkit {

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

// The journal of velkctl and its lock.
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

// The former address of the wired port, which a set to DHCP removes.
inline constexpr char kOldAddressFile[] = "/tmp/oldIPAddress";

// The leases of the DHCP client.
inline constexpr char kLeaseFolder[] = "/var/lib/dhcp";

// Hardware and network state.
inline constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";
inline constexpr char kUsbDevices[] = "/proc/bus/usb/devices";
inline constexpr char kRoutingTable[] = "/proc/net/route";
inline constexpr char kSyslogPrefix[] = "/var/log/syslog/syslog_info.log.";

// Edit copies, tools' results and the lock between programs.
inline constexpr char kEditFolder[] = "/var/tmp";
inline constexpr char kResultFile[] = "/var/tmp/get_result";
inline constexpr char kLockFile[] = "/var/tmp/vklib_lock";

// The query to the wireless daemon.
inline constexpr char kSocketFolder[] = "/tmp";
inline constexpr char kRequestSocket[] = "/tmp/WlanAplToWlanSock";
inline constexpr char kReplySocket[] = "/tmp/WlanAplFromWlanSock";
inline constexpr char kSemaphoreName[] = "/WlanAplRecvSem";
inline constexpr char kSemaphoreFolder[] = "/dev/shm";
inline constexpr char kSemaphoreFile[] = "/dev/shm/sem.WlanAplRecvSem";

}  // namespace testkit

#endif  // TESTS_SUPPORT_PATHS_H_
