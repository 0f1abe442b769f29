// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// observers.cpp - write down the steps of the library, in a trial or for real.
#include "velkctl/preview/observers.h"

#include <algorithm>
#include <cstring>

#include "velk/request.h"
#include "velk/wlan.h"
#include "velkctl/call/command.h"
#include "velkctl/preview/trial_line.h"

namespace velkctl {
namespace {

// A message has its type and two bytes, then its body.
constexpr size_t kBodyOffset = 4;
constexpr size_t kMessageSize = kBodyOffset + sizeof(SMsgConf);

std::string_view WordOf(velk_command_type type) {
    if (type == VELK_GET) {
        return "get";
    }
    return type == VELK_SET ? "set" : "restart";
}

}  // namespace

int16_t MessageType(std::string_view message) {
    int16_t type = 0;
    if (message.size() == kMessageSize) {
        memcpy(&type, message.data(), sizeof(type));
    }
    return type;
}

void TraceObserver::Begin(const Command& command) {
    log_.Add(EventKind::kCommand, WordOf(command.type));
}

int TraceObserver::RunShellLine(const char* line, SystemFunction run) {
    log_.Add(EventKind::kShellLine, line);
    return run(line);
}

unsigned TraceObserver::Wait(unsigned seconds, SleepFunction sleep) {
    log_.Add(EventKind::kWait, std::to_string(seconds));
    return sleep(seconds);
}

bool TraceObserver::TakeLogLine(std::string_view line) {
    log_.Add(EventKind::kLogLine, line);
    return true;
}

bool TraceObserver::KeepsMessage(std::string_view message) {
    log_.Add(EventKind::kMessage, message);
    return false;
}

void TraceObserver::ReadReply(void* /*bytes*/, size_t /*size*/) {
}

int TrialObserver::RunShellLine(const char* line, SystemFunction run) {
    const std::string in_copy = TrialLine(line);
    if (in_copy.empty()) {
        log().Add(EventKind::kShellLineNotRun, line);
        return 0;
    }
    log().Add(EventKind::kShellLine, line);
    return run(in_copy.c_str());
}

unsigned TrialObserver::Wait(unsigned seconds, SleepFunction /*sleep*/) {
    log().Add(EventKind::kWait, std::to_string(seconds));
    return 0;
}

bool TrialObserver::TakeLogLine(std::string_view line) {
    log().Add(EventKind::kLogLine, line);
    return false;
}

bool TrialObserver::KeepsMessage(std::string_view message) {
    last_message_ = MessageType(message);
    if (last_message_ == VELK_WLAN_REPORT || last_message_ == VELK_WLAN_STATE) {
        return false;
    }
    if (last_message_ == VELK_WLAN_STORE) {
        configuration_ = message.substr(kBodyOffset);
    }
    log().Add(EventKind::kMessageNotSent, message);
    return true;
}

void TrialObserver::ReadReply(void* bytes, size_t size) {
    if (last_message_ == VELK_WLAN_REPORT && size > kBodyOffset) {
        const size_t count = std::min(size - kBodyOffset, configuration_.size());
        memcpy(static_cast<char*>(bytes) + kBodyOffset, configuration_.data(), count);
    }
}

}  // namespace velkctl
