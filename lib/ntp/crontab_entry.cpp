// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// crontab_entry.cpp - the crontab entry that sets the clock: whether it is active, and its server.
#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/data_area.h"
#include "lib/base/file_edit.h"
#include "lib/base/line_reader.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/ntp.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr char kClient[] = "ntpdate";

// Returns the position for a new server: after the last word before the redirection.
size_t PlaceForServer(std::string_view line) {
    const size_t redirection = line.find('>');
    if (redirection == std::string_view::npos) {
        throw std::out_of_range("basic_string::at");
    }
    const size_t blank = line.rfind(' ', redirection);  // no word precedes one in column one
    return blank == std::string_view::npos || blank == 0 ? redirection : blank;
}

int WriteMethod(FileEdit& edit, bool on) {
    for (std::string_view line; edit.ReadLine(line);) {
        const size_t position = line.find(kClient);
        if (position == std::string_view::npos) {
            edit.Keep(line);
        } else {
            edit.Write(SwitchLine(line, position, on));
        }
    }
    return edit.Finish();
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetNtpdate(const std::string& line, std::string& server) {
    const size_t position = line.find(kClient);
    if (position == std::string::npos) {
        return LIB_VELK_SUCCESS;
    }
    std::string_view rest = std::string_view(line).substr(position + strlen(kClient));
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        if (!word.empty() && IsLetterOrDigit(word.front())) {
            server = word;
            return LIB_VELK_SUCCESS;
        }
        if (Contains(word, ">")) {
            return LIB_VELK_SUCCESS;
        }
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    }
    return LIB_VELK_SUCCESS;
}

int ChangeNtpdate(std::string& line, const std::string& server) {
    std::string old;
    (void)GetNtpdate(line, old);
    if (old.empty()) {
        line.insert(PlaceForServer(line), server);
    } else {
        line.replace(line.find(old), old.size(), server);
    }
    return LIB_VELK_SUCCESS;
}

int GetNtpMethod(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader crontab = LineReader::OfFileNeverEmpty(kCrontab);
    if (!crontab.is_open()) {
        LogErrno("GetNtpMethod ifstream errno=%d:%s", crontab.error());
        return LIB_VELK_FAILURE;
    }
    // The default is set first: reading a long line may run out of memory.
    out[0] = VELK_OFF;
    for (std::string_view line; crontab.ReadLine(line);) {
        const size_t position = line.find(kClient);
        if (position != std::string_view::npos && !IsCommentedOut(line, position)) {
            out[0] = VELK_ON;
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}

int SetNtpMethod(const _velk_request& request, char* /*out*/) {
    FileEdit edit(kCrontab);  // after a refused byte an empty edit copy remains
    const char method = request.data[0];
    if (method != VELK_ON && method != VELK_OFF) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const int written = WriteMethod(edit, method == VELK_ON);
    if (written == LIB_VELK_SUCCESS && method == VELK_OFF) {
        DeleteNtpLog();  // its result would look like a current one
    }
    return written;
}

int GetNtpIp(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader crontab = LineReader::OfFileNeverEmpty(kCrontab);
    if (!crontab.is_open()) {
        return LIB_VELK_FAILURE;
    }
    for (std::string_view line; crontab.ReadLine(line);) {
        if (Contains(line, kClient)) {
            std::string server;
            (void)GetNtpdate(std::string(line), server);
            PutText(out, server);
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}

int SetNtpIp(const _velk_request& request, char* /*out*/) {
    FileEdit edit(kCrontab);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const std::string server(FieldText(request.data));
    for (std::string_view line; edit.ReadLine(line);) {
        if (Contains(line, kClient)) {
            std::string changed(line);
            (void)ChangeNtpdate(changed, server);
            edit.Write(changed);
        } else {
            edit.Keep(line);
        }
    }
    return edit.Finish();
}
