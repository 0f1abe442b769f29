// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dns.cpp - the DNS servers in the DNS forwarder's configuration.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

#include <fcntl.h>

#include "lib/base/file_io.h"
#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "lib/base/words.h"
#include "velk/ipconf.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr mode_t kNewFileMode = 0666;  // narrowed by the caller's umask
constexpr std::string_view kKeyword = "nameserver";
constexpr size_t kSlots = VELK_DNS_SLOTS;
constexpr size_t kSlotSize = VELK_DNS_SLOT_SIZE;

using SlotArea = std::array<char, kSlots * kSlotSize>;

// Returns the address in a slot. A slot filled to its last byte is an address of that length, even
// with a NUL inside.
std::string_view SlotText(const char* slot) {
    const bool filled = slot[kSlotSize - 1] != '\0';
    return {slot, filled ? kSlotSize : strlen(slot)};
}

// Copies the address without a terminator. An address longer than its slot continues in the next
// one. A missing address empties the slot.
void PutSlot(SlotArea& slots, size_t index, std::string_view address) {
    const size_t offset = index * kSlotSize;
    if (address.empty()) {
        std::fill_n(&slots[offset], kSlotSize, '\0');
        return;
    }
    address.copy(&slots[offset], slots.size() - offset);
}

// Returns the file's new text, up to the first empty slot.
std::string ServerLines(const char* slots) {
    std::string text;
    for (size_t i = 0; i < kSlots && slots[i * kSlotSize] != '\0'; ++i) {
        text.append(kKeyword).append(" ").append(SlotText(&slots[i * kSlotSize])).append("\n");
    }
    return text;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetDns(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader file(kResolverFile);
    if (!file.is_open()) {
        return LIB_VELK_FAILURE;
    }
    SlotArea slots{};
    std::string_view line;
    for (size_t count = 0; count < kSlots && file.ReadLine(line);) {
        if (!line.starts_with(kKeyword)) {
            continue;
        }
        (void)TakeWord(line);  // the keyword, with any text attached to it
        PutSlot(slots, count, TakeWord(line));
        ++count;
    }
    memcpy(out, slots.data(), slots.size());
    return LIB_VELK_SUCCESS;
}

int SetDns(const _velk_request& request, char* /*out*/) {
    const std::string text = ServerLines(request.data);
    UniqueFd file(open(kResolverFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewFileMode));
    if (file.get() == -1) {
        return LIB_VELK_FAILURE;
    }
    const bool written = WriteAll(file.get(), text);
    const bool closed = file.Reset() == 0;
    return written && closed ? LIB_VELK_SUCCESS : LIB_VELK_FAILURE;
}
