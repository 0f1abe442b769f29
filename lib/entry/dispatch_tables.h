// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dispatch_tables.h - the function of each command, and the interfaces that it takes.
#ifndef VELK_ENTRY_DISPATCH_TABLES_H_
#define VELK_ENTRY_DISPATCH_TABLES_H_

#include <cstdint>
#include <span>

#include "velk/request.h"

namespace velk {

// Runs a command: reads the request, writes its result into the 512 zeroed bytes of `out`.
using CommandHandler = int (*)(const _velk_request& request, char* out);

struct CommandEntry {
    uint32_t command_id;
    uint8_t no_interface_allowed;
    uint8_t eth0_allowed;
    uint8_t eth1_allowed;
    uint8_t spare;  // always 0
    CommandHandler handler;
};

// The first row with the id counts.
extern const std::span<const CommandEntry> kGetTable;
extern const std::span<const CommandEntry> kSetTable;
extern const std::span<const CommandEntry> kRestartTable;

}  // namespace velk

#endif  // VELK_ENTRY_DISPATCH_TABLES_H_
