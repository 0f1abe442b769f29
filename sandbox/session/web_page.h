// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// web_page.h - the settings page of a device, for a browser on the machine (--web).
#ifndef SANDBOX_SESSION_WEB_PAGE_H_
#define SANDBOX_SESSION_WEB_PAGE_H_

#include <cstdint>
#include <string>

#include "lib/base/unique_fd.h"

namespace sandbox {

struct WebPage {
    std::string program;  // velk-web
    std::string folder;   // holds the page
    velk::UniqueFd listener{};
    uint16_t port = 0;
};

// Listens on a port of the machine's loopback interface, 0 for a free one, and on no other
// interface. Must run before the namespaces are made. Throws Failure.
void OpenWebPort(WebPage& page, uint16_t port);

// On the device: sets a password, prints address, user and password, and starts a process that
// serves each connection with busybox httpd. Throws Failure.
void StartWebPage(WebPage page);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_WEB_PAGE_H_
