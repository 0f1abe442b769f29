// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ifconfig.cpp - reads an interface's live address and mask back from ifconfig(8).
#include <cstring>
#include <string_view>

#include "lib/base/command_output.h"
#include "lib/base/data_area.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/shell.h"
#include "lib/base/words.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

// Finds the lines of one interface's block. A header line counts when it begins with the name, so
// the block of an alias such as eth0:1 belongs to eth0 too.
class BlockScanner {
  public:
    explicit BlockScanner(std::string_view name) : name_(name) {}

    bool IsInBlock(std::string_view line) {
        if (inside_ && line.empty()) {
            return false;  // ifconfig separates blocks by an empty line; the next header decides
        }
        const bool is_continuation = inside_ && line.front() == ' ';
        inside_ = line.starts_with(name_) || is_continuation;
        return inside_;
    }

  private:
    const std::string_view name_;
    bool inside_ = false;
};

// Writes the text after the key, up to the first blank.
void PutValue(std::string_view line, std::string_view key, char* out) {
    const size_t found = line.find(key);
    if (found == std::string_view::npos) {
        return;
    }
    const std::string_view rest = line.substr(found + key.size());
    PutText(out, rest.substr(0, rest.find(' ')));
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetNetAddress(const _velk_request& request, const char* key, char* out) {
    if (key == nullptr || out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    CommandOutput output(CommandLine("ifconfig > %s", kResultFile));
    if (output.run_result() != LIB_VELK_SUCCESS) {
        return LIB_VELK_FAILURE;
    }
    if (!output.is_open()) {
        Log("ifstream");
        return LIB_VELK_FAILURE;
    }
    BlockScanner scanner(FieldText(request.interface));
    for (std::string_view line; output.ReadLine(line);) {
        if (scanner.IsInBlock(line)) {
            PutValue(line, key, out);
        }
    }
    output.Remove();
    return LIB_VELK_SUCCESS;
}

int GetIpAddress(const _velk_request& request, char* out) {
    return GetNetAddress(request, "inet addr:", out);
}

int GetSubNetMask(const _velk_request& request, char* out) {
    return GetNetAddress(request, "Mask:", out);
}
