// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interfaces_writer.cpp - changes an interface's method and its static addresses.
#include <string>
#include <string_view>

#include "lib/base/data_area.h"
#include "lib/base/file_edit.h"
#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"
#include "velk/dhcp.h"
#include "velk/frame.h"
#include "velk/ipconf.h"
#include "velk/request.h"

namespace velk {
namespace {

// Another program of the device keeps the file.
constexpr auto kOldAddressRemoval = JoinText("rm -f ", kOldAddressFile);

// Writes the method into the header of every stanza of the interface. Anything else on the header
// line is removed.
int WriteMethod(FileEdit& edit, std::string_view interface, std::string_view method) {
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const std::string header = StanzaHeader(interface);
    for (std::string_view line; edit.KeepLinesBefore(header, line);) {
        edit.Write(header);
        edit.Write(method);
        edit.Write("\n");
    }
    return edit.Finish();
}

int ChangeMethod(std::string_view interface, char method) {
    FileEdit edit(kInterfacesFile);  // after a refused method an empty edit copy remains
    if (method != VELK_METHOD_STATIC && method != VELK_METHOD_DHCP) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const bool is_dhcp = method == VELK_METHOD_DHCP;
    const int written = WriteMethod(edit, interface, is_dhcp ? kDhcpMethod : kStaticMethod);
    if (written != LIB_VELK_SUCCESS) {
        return written;
    }
    return SetDhcpRequest(std::string(interface), is_dhcp);
}

// Copies a stanza's body up to the line of the key or to the next stanza. `value_line` replaces the
// line of the key or is inserted before the next stanza. If it is empty, the line of the key is
// removed. The last stanza of the file gets no new line.
void EditBody(FileEdit& edit, std::string_view key, std::string_view value_line) {
    for (std::string_view line; edit.ReadLine(line);) {
        if (line.starts_with(kStanzaStart)) {
            edit.Write(value_line);
            edit.Keep(line);
            return;
        }
        if (Contains(line, key)) {
            edit.Write(value_line);
            return;
        }
        edit.Keep(line);
    }
}

}  // namespace
}  // namespace velk

using namespace velk;

int SetIpSettingMethod(const _velk_request& request, char* /*out*/) {
    const std::string_view interface = FieldText(request.interface);
    const char method = request.data[0];
    const int result = ChangeMethod(interface, method);
    if (interface == VELK_WIRED_INTERFACE && method == VELK_METHOD_DHCP) {
        (void)SystemCommand(kOldAddressRemoval.c_str());
    }
    return result;
}

int SetAddressConf(const _velk_request& request, const char* key) {
    if (key == nullptr) {
        return LIB_VELK_FAILURE;
    }
    FileEdit edit(kInterfacesFile);
    if (!edit.is_open()) {
        return LIB_VELK_FAILURE;
    }
    const std::string_view value = FieldText(request.data);
    const bool removes = value.empty() && std::string_view(key) == kGatewayKey;
    std::string value_line;
    if (!removes) {
        value_line.append("\t").append(key).append(value).append("\n");
    }
    const std::string header = StanzaHeader(FieldText(request.interface));
    for (std::string_view line; edit.KeepLinesBefore(header, line);) {
        edit.Keep(line);
        EditBody(edit, key, value_line);
    }
    return edit.Finish();
}

int SetIpAddressConf(const _velk_request& request, char* /*out*/) {
    return SetAddressConf(request, kAddressKey);
}

int SetSubNetMaskConf(const _velk_request& request, char* /*out*/) {
    return SetAddressConf(request, kNetmaskKey);
}

int SetDefGatewayConf(const _velk_request& request, char* /*out*/) {
    return SetAddressConf(request, kGatewayKey);
}
