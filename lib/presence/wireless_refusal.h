// wireless.h - when the wireless interface may be asked about.
#ifndef VELK_PRESENCE_WIRELESS_REFUSAL_H_
#define VELK_PRESENCE_WIRELESS_REFUSAL_H_

namespace velk {

// LIB_VELK_NO_ADAPTER when no supported adapter is attached, else LIB_VELK_WIRED_LINKED when the
// wired port has a link, else LIB_VELK_SUCCESS. The link is asked for last: that may take a minute.
int WirelessRefusal();

}  // namespace velk

#endif  // VELK_PRESENCE_WIRELESS_REFUSAL_H_
