// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exit_hooks.cpp - switches commands in the script that the DHCP client runs after its lease
// events.
#include <cstring>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/data_area.h"
#include "lib/base/file_edit.h"
#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"
#include "velk/ipconf.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr char kInterfaceVariable[] = "$interface";

// Returns the line with the command switched. A byte that is no switch leaves the line unchanged.
std::string SwitchCommand(std::string_view line, std::string_view command, char state) {
    const size_t position = line.find(command);
    const bool is_switch = state == VELK_ON || state == VELK_OFF;
    if (position == std::string_view::npos || !is_switch) {
        return std::string(line);
    }
    return SwitchLine(line, position, state == VELK_ON);
}

}  // namespace
}  // namespace velk

using namespace velk;

int SetDhclient(const _velk_request& request, const char* command) {
    if (command == nullptr) {
        return LIB_VELK_FAILURE;
    }
    FileEdit edit(kExitHooks);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const std::string_view interface = FieldText(request.interface);
    ShellBlocks blocks(kInterfaceVariable, interface);
    for (std::string_view line; edit.ReadLine(line);) {
        const bool runs = blocks.RunsNext(line) || interface.empty();  // no interface means all
        if (runs) {
            edit.Write(SwitchCommand(line, command, request.data[0]));
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}

int SetApipa(const _velk_request& request, char* /*out*/) {
    return SetDhclient(request, kLinkLocalDaemon);
}

int SetNtpdate(const _velk_request& request) {
    return SetDhclient(request, kClockSetter);
}

int SetPrintDHCPFinished(const _velk_request& request, char* /*out*/) {
    const int difference =
        strncmp(request.interface, VELK_WIRED_INTERFACE, sizeof(request.interface));
    if (difference != 0) {
        return difference;
    }
    const int result = SetDhclient(request, kFinishNotice);
    if (result != LIB_VELK_SUCCESS) {
        return result;
    }
    return SetDhclient(request, kStartNotice);
}

int GetApipa(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    LineReader hooks = LineReader::OfFileNeverEmpty(kExitHooks);
    if (!hooks.is_open()) {
        return LIB_VELK_FAILURE;
    }
    // The default is set first: reading a long line may run out of memory.
    out[0] = VELK_OFF;
    ShellBlocks blocks(kInterfaceVariable, FieldText(request.interface));
    for (std::string_view line; hooks.ReadFullLine(line);) {
        if (blocks.RunsNext(line) && HasWord(line, kLinkLocalDaemon, /*comment_aware=*/true)) {
            out[0] = VELK_ON;
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}
