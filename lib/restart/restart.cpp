// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restart.cpp - brings an interface down and up again so that changed settings take effect.
#include <string>

#include "lib/base/data_area.h"
#include "lib/base/shell.h"
#include "lib/base/wait.h"
#include "velk/frame.h"
#include "velk/request.h"
#include "velk/wired.h"
#include "velk/wlan.h"

namespace velk {
namespace {

std::string InterfaceName(const _velk_request& request) {
    return std::string(FieldText(request.interface));
}

int RunIfdown(const char* name) {
    return CommandLine("sudo ifdown %s", name).Run();
}

int RunIfup(const char* name) {
    return CommandLine("sudo ifup %s", name).Run();
}

int NotifyDaemon() {
    return SendWlanRequestMessage(VELK_WLAN_RESTARTED, nullptr);
}

}  // namespace
}  // namespace velk

using namespace velk;

int Restart(const _velk_request& request, char* out) {
    if (FieldText(request.interface) == VELK_WIRED_INTERFACE) {
        return RestartWired(request, out);
    }
    return RestartWireless(request, out);
}

int RestartWired(const _velk_request& request, char* /*out*/) {
    const std::string name = InterfaceName(request);
    (void)RunIfdown(name.c_str());
    WaitSeconds(1);
    const int result = RunIfup(name.c_str());
    if (IsWlanAttached() == 0) {
        return result;
    }
    WaitSeconds(5);
    if (IsWiredLinked() == 0) {
        return result;
    }
    // With the cable in, the wireless interface is restarted too, twice: one pass is not enough.
    for (int pass = 0; pass < 2; ++pass) {
        WaitSeconds(30);
        (void)RunIfdown(VELK_WIRELESS_INTERFACE);
        (void)RunIfup(VELK_WIRELESS_INTERFACE);
    }
    return result;
}

int RestartWireless(const _velk_request& request, char* /*out*/) {
    if (IsWlanAttached() == 0) {
        return LIB_VELK_NO_ADAPTER;
    }
    if (request.data[0] == VELK_RESTART_NOTIFY_ONLY) {
        return IsWiredLinked() != 0 ? LIB_VELK_SUCCESS : NotifyDaemon();
    }
    const std::string name = InterfaceName(request);
    (void)RunIfdown(name.c_str());
    WaitSeconds(1);
    if (IsWiredLinked() != 0) {
        return CommandLine("sudo ifconfig %s up", name.c_str()).Run();
    }
    // It runs in the background, because getting an address may take long.
    (void)CommandLine("sudo ifup %s &", name.c_str()).Run();
    return NotifyDaemon();
}
