// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// result_log.cpp - the result of the time client's last run.
#include <string_view>

#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/shell.h"
#include "velk/ntp.h"
#include "velk/request.h"

namespace velk {
namespace {

// The client's lines begin with a time stamp. A text before this position is not a report about a
// server.
constexpr size_t kFirstPlace = 11;

bool ReportsServer(std::string_view line) {
    return line.find("time server", kFirstPlace) != std::string_view::npos;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetNtpCommunicate(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader log(kNtpLog);
    if (!log.is_open()) {
        out[0] = VELK_NTP_NO_RESULT;
        return LIB_VELK_SUCCESS;
    }
    out[0] = VELK_NTP_NOT_REACHED;
    for (std::string_view line; log.ReadLine(line);) {  // the last line decides
        out[0] = ReportsServer(line) ? VELK_NTP_REACHED : VELK_NTP_NOT_REACHED;
    }
    return LIB_VELK_SUCCESS;
}

void DeleteNtpLog() {
    (void)CommandLine("rm %s", kNtpLog).Run();
}
