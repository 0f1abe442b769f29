// paths.h - where the library keeps files and meets other programs.
#ifndef VELKCTL_FILES_PATHS_H_
#define VELKCTL_FILES_PATHS_H_

#include "lib/base/crontab.h"
#include "lib/base/result_file.h"
#include "lib/dhcp/config_blocks.h"
#include "lib/ipconf/interfaces_file.h"

namespace velkctl {

// Files with settings. Those that the library itself has a name for stand here under the same one.
using velk::kCrontab;
using velk::kDhcpConfigFile;
using velk::kInterfacesFile;
inline constexpr char kExitHooks[] = "/etc/dhclient-exit-hooks";
inline constexpr char kClientScript[] = "/sbin/dhclient-script";
inline constexpr char kResolverFile[] = "/etc/resolv.dnsmasq.conf";
inline constexpr char kIdentityFile[] = "/var/libvelk/libvelk";
inline constexpr char kSnmpFile[] = "/usr/local/share/etc/snmp/snmpd.conf";
inline constexpr char kNtpLog[] = "/var/libvelk/ntp.log";

// What tells wireless adapters.
inline constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";
inline constexpr char kUsbDevices[] = "/proc/bus/usb/devices";

// Where files are changed in a copy before they are changed themselves.
inline constexpr char kEditFolder[] = "/var/tmp";

// The output of a tool. Two readers of it are kept apart by a lock on the folder.
using velk::kResultFile;

// Keeps two changes apart.
inline constexpr char kLockFile[] = "/var/tmp/vklib_lock";

// Where a query meets the wireless daemon: two sockets and a semaphore.
inline constexpr char kRequestSocket[] = "/tmp/WlanAplToWlanSock";
inline constexpr char kReplySocket[] = "/tmp/WlanAplFromWlanSock";
inline constexpr char kSemaphoreName[] = "/WlanAplRecvSem";  // as sem_open(3) takes it
inline constexpr char kSemaphoreFile[] = "/dev/shm/sem.WlanAplRecvSem";

}  // namespace velkctl

#endif  // VELKCTL_FILES_PATHS_H_
