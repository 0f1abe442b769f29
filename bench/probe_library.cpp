// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// probe_library.cpp - a minimal C++ library that answers the loader's get, using only std::string.
#include <cstring>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "velk.h"

int execute_velk_command(const _velk_request* request, _velk_request* response) {
    std::string text(4096, '\0');
    const int fd = open(velk::kInterfacesFile, O_RDONLY | O_CLOEXEC);
    const ssize_t count = read(fd, text.data(), text.size());
    close(fd);
    text.resize(count > 0 ? static_cast<size_t>(count) : 0);
    const std::string header = std::string("iface ").append(request->interface).append(" inet ");
    const size_t stanza = text.find(header);
    const size_t value = text.find("address ", stanza);
    if (stanza == std::string::npos || value == std::string::npos) {
        return LIB_VELK_FAILURE;
    }
    const std::string address = text.substr(value + 8, text.find('\n', value) - value - 8);
    strncpy(response->data, address.c_str(), sizeof(response->data) - 1);
    return LIB_VELK_SUCCESS;
}
