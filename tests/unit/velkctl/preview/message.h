// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// message.h - a message to the wireless daemon.
#ifndef TESTS_UNIT_VELKCTL_PREVIEW_MESSAGE_H_
#define TESTS_UNIT_VELKCTL_PREVIEW_MESSAGE_H_

#include <cstdint>
#include <string>

#include "support/machine.h"
#include "velk.h"

namespace testkit {

// A message of 240 bytes with this body.
inline std::string Message(uint16_t type, char body = '\0') {
    std::string message(4 + sizeof(SMsgConf), body);
    message.replace(0, 4, ShortBytes(type) + std::string(2, '\0'));
    return message;
}

}  // namespace testkit

#endif  // TESTS_UNIT_VELKCTL_PREVIEW_MESSAGE_H_
