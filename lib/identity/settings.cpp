// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// settings.cpp - administrator and location, in the library's settings file and the SNMP daemon's.
#include <string>
#include <string_view>

#include "lib/base/data_area.h"
#include "lib/base/file_edit.h"
#include "lib/base/find_row.h"
#include "lib/base/join_text.h"
#include "lib/base/line_reader.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/identity/tool_locale.h"
#include "velk/frame.h"
#include "velk/identity.h"
#include "velk/request.h"

namespace velk {
namespace {

constexpr auto kSnmpRestart = JoinText("sudo ", kSnmpScript, " restart > /dev/null 2>&1");

struct IdentitySetting {
    uint32_t command_id;
    std::string_view key;        // at the start of its lines; the value follows
    std::string_view directive;  // in the SNMP daemon's configuration
};

constexpr IdentitySetting kSettings[] = {
    {VELK_CMD_ADMINISTRATOR, "ADMINISTRATOR=", "syscontact"},
    {VELK_CMD_LOCATION, "LOCATION=", "syslocation"},
};

const IdentitySetting* FindSetting(uint32_t command_id) {
    return FindRow(kSettings, command_id, &IdentitySetting::command_id);
}

// Writes the value into every line of the setting, or into a new last line if there is none.
void WriteSetting(FileEdit& edit, std::string_view key, std::string_view value) {
    const std::string value_line = std::string(key).append(value).append("\n");
    bool found = false;
    for (std::string_view line; edit.ReadLine(line);) {
        if (line.starts_with(key)) {
            edit.Write(value_line);
            found = true;
        } else {
            edit.Keep(line);
        }
    }
    if (!found) {
        edit.Write(value_line);
    }
}

// Copies the value into every line of the SNMP daemon's configuration that has the directive. The
// command line has no fixed size: escaping makes a value up to four times as long.
void MirrorIntoSnmp(std::string_view directive, std::string_view value) {
    const std::string_view locale = ToolLocale();
    if (!KeepsEscapes(locale, value)) {
        Log("SetSettingFile no SNMP line in the locale %.64s", locale.data());
        return;
    }
    const std::string shown = value.empty() ? "\"\"" : GetEscapeString(std::string(value));
    std::string line = "sudo sed -i 's/";
    line.append(directive).append(".*/").append(directive).append(" ").append(shown);
    line.append("/' ").append(kSnmpFile);
    (void)SystemCommand(line.c_str());
    (void)SystemCommand(kSnmpRestart.c_str());
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetSettingFile(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const IdentitySetting* setting = FindSetting(request.command_id);
    if (setting == nullptr) {
        Log("LIB_VELK_INVALID_PARAMETER = %d", static_cast<int>(request.command_id));
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader file = LineReader::OfFileNeverEmpty(kIdentityFile);
    if (!file.is_open()) {
        LogErrno("GetSettingFile ifstream errno=%d:%s", file.error());
        return LIB_VELK_FAILURE;
    }
    for (std::string_view line; file.ReadLine(line);) {
        if (line.starts_with(setting->key)) {
            PutText(out, line.substr(setting->key.size()));
            break;
        }
    }
    return LIB_VELK_SUCCESS;
}

int SetSettingFile(const _velk_request& request, char* /*out*/) {
    const IdentitySetting* setting = FindSetting(request.command_id);
    if (setting == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    FileEdit edit(kIdentityFile);
    if (edit.target_error() != 0) {
        LogErrno("SetSettingFile ifstream errno=%d:%s", edit.target_error());
    }
    if (edit.copy_error() != 0) {
        LogErrno("SetSettingFile ofstream errno=%d:%s", edit.copy_error());
    }
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const std::string_view value = FieldText(request.data);
    WriteSetting(edit, setting->key, value);
    const int written = edit.Finish();
    if (written == LIB_VELK_SUCCESS) {
        MirrorIntoSnmp(setting->directive, value);
    }
    return written;
}
