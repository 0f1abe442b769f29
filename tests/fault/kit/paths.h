// paths.h - the library's places that more than one part of the ring knows.
#ifndef TESTS_FAULT_KIT_PATHS_H_
#define TESTS_FAULT_KIT_PATHS_H_

namespace fault {

inline constexpr char kInterfaces[] = "/etc/network/interfaces";
inline constexpr char kLock[] = "/var/tmp/vklib_lock";
inline constexpr char kResultFile[] = "/var/tmp/get_result";
inline constexpr char kScratchFolder[] = "/var/tmp";
inline constexpr char kReplySocket[] = "/tmp/WlanAplFromWlanSock";
inline constexpr char kSemaphore[] = "/dev/shm/sem.WlanAplRecvSem";
inline constexpr char kUsbDevices[] = "/proc/bus/usb/devices";
inline constexpr char kSupportList[] = "/usr/local/share/apps/wlan/supportlist.ini";
inline constexpr char kClockLog[] = "/var/libvelk/ntp.log";
inline constexpr char kExitHooks[] = "/etc/dhclient-exit-hooks";
inline constexpr char kResolverFile[] = "/etc/resolv.dnsmasq.conf";

}  // namespace fault

#endif  // TESTS_FAULT_KIT_PATHS_H_
