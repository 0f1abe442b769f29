// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ioctl_table.h - the functions that read and change a property that the kernel holds.
#ifndef VELK_WIRED_IOCTL_TABLE_H_
#define VELK_WIRED_IOCTL_TABLE_H_

#include <cstdint>
#include <span>

#include <net/if.h>

namespace velk {

// Writes the property into the response's data area.
using IoctlGetHandler = int (*)(int socket, ifreq& ifr, int request, char* out);
// Changes the property to the request's parameter, a byte or a NUL-terminated text.
using IoctlSetHandler = int (*)(int socket, ifreq& ifr, int request, const char* value);

struct IoctlEntry {
    uint32_t command_id;
    uint32_t get_request;  // 0: the handler makes no ioctl
    IoctlGetHandler get_handler;
    uint32_t set_request;
    IoctlSetHandler set_handler;  // null: the property cannot be changed
};

// The first row with the id counts.
extern const std::span<const IoctlEntry> kIoctlTable;

}  // namespace velk

#endif  // VELK_WIRED_IOCTL_TABLE_H_
