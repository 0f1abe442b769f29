// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dispatch.cpp - the entry point: checks a request, finds its command and runs it.
#include <algorithm>
#include <cstring>
#include <exception>
#include <span>
#include <string_view>

#include <pthread.h>

#include "lib/base/data_area.h"
#include "lib/base/log.h"
#include "lib/entry/dispatch_tables.h"
#include "lib/entry/lock.h"
#include "velk.h"
#include "velk/frame.h"
#include "velk/request.h"

namespace velk {
namespace {

// Delays pthread_cancel(3) to the end of the call. A thread that ended in the middle would leave a
// file half written, and unwinding through a destructor would end the whole program.
class UncancellableScope {
  public:
    UncancellableScope() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state_); }
    ~UncancellableScope() { pthread_setcancelstate(state_, nullptr); }
    UncancellableScope(const UncancellableScope&) = delete;
    UncancellableScope& operator=(const UncancellableScope&) = delete;

  private:
    int state_ = PTHREAD_CANCEL_ENABLE;
};

void StartResponse(const _velk_request& request, _velk_request& response) {
    memset(&response, 0, sizeof(response));
    PutFieldText(response.interface, FieldText(request.interface));
    response.command_type = request.command_type;
    response.command_id = request.command_id;
}

bool IsInterfaceAllowed(const CommandEntry& entry, std::string_view interface) {
    if (interface.empty()) {
        return entry.no_interface_allowed != 0;
    }
    if (interface == VELK_WIRED_INTERFACE) {
        return entry.eth0_allowed != 0;
    }
    return interface == VELK_WIRELESS_INTERFACE && entry.eth1_allowed != 0;
}

int RunFromTable(std::span<const CommandEntry> table, const _velk_request& request, char* out) {
    // Every call comes through here: unlike FindRow(), find_if() compares four rows a round.
    const auto entry = std::find_if(table.begin(), table.end(), [&](const CommandEntry& row) {
        return row.command_id == request.command_id;
    });
    if (entry == table.end()) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (!IsInterfaceAllowed(*entry, FieldText(request.interface))) {
        Log("paramater matching");
        return LIB_VELK_INVALID_PARAMETER;
    }
    return entry->handler(request, out);
}

int RunLocked(std::span<const CommandEntry> table, const _velk_request& request, char* out) {
    const CommandLock lock(VkLibLock());
    if (!lock.held()) {
        Log("lockking");
        return lock.refusal();
    }
    return RunFromTable(table, request, out);
}

int Run(const _velk_request& request, char* out) {
    switch (request.command_type) {
        case VELK_GET:
            return RunFromTable(kGetTable, request, out);
        case VELK_SET:
            return RunLocked(kSetTable, request, out);
        case VELK_RESTART:
            return RunLocked(kRestartTable, request, out);
        default:
            Log("command_type = %d", static_cast<int>(request.command_type));
            return LIB_VELK_INVALID_PARAMETER;
    }
}

}  // namespace
}  // namespace velk

using namespace velk;

int execute_velk_command(const _velk_request* request, _velk_request* response) {
    if (request == nullptr || response == nullptr) {
        Log("paramater");
        return LIB_VELK_INVALID_PARAMETER;
    }
    StartResponse(*request, *response);
    const UncancellableScope uncancellable;
    try {
        return Run(*request, response->data);
    } catch (const std::exception& error) {
        Log("execute_velk_command exception %s", error.what());
    } catch (...) {
        Log("execute_velk_command exception");
    }
    return LIB_VELK_FAILURE;
}
