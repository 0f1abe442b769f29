// wireless.cpp - when the wireless interface may be asked about.
#include "lib/presence/wireless.h"

#include "velk.h"

namespace velk {

int WirelessRefusal() {
    if (IsWlanAttached() == 0) {
        return LIB_VELK_NO_ADAPTER;
    }
    return IsWiredLinked() == 0 ? LIB_VELK_SUCCESS : LIB_VELK_WIRED_LINKED;
}

}  // namespace velk
