// wlan.h - the wireless adapter: detection.
#ifndef VELK_WLAN_H_
#define VELK_WLAN_H_

#include "velk/export.h"

// Says whether a supported USB wireless adapter is attached: 1 or 0. It never fails.
//
// The kernel's list of attached devices, /proc/bus/usb/devices (usbfs), is matched line by line
// against the text "QT4408RKM" and against every adapter of the support list,
// /usr/local/share/apps/wlan/supportlist.ini: lines "VID=1a2b" and "PID=3c4d" in hexadecimal, a
// vendor being in force for all products behind it. A missing support list leaves the one text; a
// missing device list gives 0. Both files are read afresh at every call. Logs nothing.
//
// Blocking: as long as reading two small files.
VELK_API int IsWlanAttached();

#endif  // VELK_WLAN_H_
