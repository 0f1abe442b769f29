// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interfaces_reader.cpp - an interface's method and addresses, as they are configured or live.
#include <string>
#include <string_view>

#include "lib/base/data_area.h"
#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"
#include "velk/ipconf.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

int MethodNamed(std::string_view text) {
    if (text.starts_with(kDhcpMethod)) {
        return VELK_METHOD_DHCP;
    }
    if (text.starts_with(kStaticMethod)) {
        return VELK_METHOD_STATIC;
    }
    return LIB_VELK_FAILURE;
}

// An interface's first stanza. Later ones of the same interface are ignored.
class Stanza {
  public:
    explicit Stanza(std::string_view interface)
        : file_(LineReader::OfFileNeverEmpty(kInterfacesFile)) {
        for (std::string_view line; file_.ReadLine(line);) {
            if (const size_t length = HeaderLength(line, interface); length != 0) {
                method_ = MethodNamed(line.substr(length));
                return;
            }
        }
    }

    bool is_open() const { return file_.is_open(); }
    // Returns VELK_METHOD_STATIC, VELK_METHOD_DHCP, or LIB_VELK_FAILURE for anything else.
    int method() const { return method_; }

    // Writes the text after the key from the first line of the body with the key, if any.
    void PutValue(std::string_view key, char* out) {
        for (std::string_view line; file_.ReadLine(line) && !line.starts_with(kStanzaStart);) {
            const size_t position = line.find(key);
            if (position != std::string_view::npos) {
                PutText(out, line.substr(position + key.size()));
                return;
            }
        }
    }

  private:
    LineReader file_;
    int method_ = LIB_VELK_FAILURE;
};

using LiveGetter = int (*)(const _velk_request& request, char* out);

// Writes the configured value of a static interface, the live value of a DHCP interface.
int GetAddress(const _velk_request& request, std::string_view key, LiveGetter get_live, char* out) {
    const std::string_view interface = FieldText(request.interface);
    {
        Stanza stanza(interface);
        if (stanza.method() == VELK_METHOD_STATIC && out != nullptr) {
            stanza.PutValue(key, out);
            return LIB_VELK_SUCCESS;
        }
        if (stanza.method() != VELK_METHOD_DHCP) {
            return LIB_VELK_FAILURE;
        }
    }  // closed first: the rest may take a minute
    if (interface == VELK_WIRELESS_INTERFACE && IsWiredLinked() != 0) {
        return LIB_VELK_SUCCESS;  // with the cable in, a wireless lease is meaningless
    }
    return get_live(request, out);
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetIpSetting(const std::string& interface) {
    return Stanza(interface).method();
}

int GetIpSettingMethod(const _velk_request& request, char* out) {
    if (out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    const int method = Stanza(FieldText(request.interface)).method();
    if (method == LIB_VELK_FAILURE) {
        return LIB_VELK_FAILURE;
    }
    out[0] = static_cast<char>(method);
    return LIB_VELK_SUCCESS;
}

int GetAddressConf(const _velk_request& request, const char* key, char* out) {
    if (key == nullptr || out == nullptr) {
        return LIB_VELK_FAILURE;
    }
    Stanza stanza(FieldText(request.interface));
    if (!stanza.is_open()) {
        return LIB_VELK_FAILURE;
    }
    stanza.PutValue(key, out);
    return LIB_VELK_SUCCESS;
}

int GetIpAddressConf(const _velk_request& request, char* out) {
    return GetAddress(request, kAddressKey, GetIpAddress, out);
}

int GetSubNetMaskConf(const _velk_request& request, char* out) {
    return GetAddress(request, kNetmaskKey, GetSubNetMask, out);
}

int GetDefGatewayConf(const _velk_request& request, char* out) {
    return GetAddress(request, kGatewayKey, GetIoctl, out);
}
