// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// left_client.h - a process that looks like a DHCP client.
#ifndef TESTS_SUPPORT_LEFT_CLIENT_H_
#define TESTS_SUPPORT_LEFT_CLIENT_H_

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace testkit {

// A process with the command line of a client of eth0. It ends with the object.
class LeftClient {
  public:
    LeftClient() : id_(fork()) {
        if (id_ == 0) {
            execl("/bin/sh", "dhclient", "-c", "kill -STOP $$; :", "eth0", nullptr);
            _exit(127);
        }
        (void)waitpid(id_, nullptr, WUNTRACED);  // it has its command line when it stops
    }
    ~LeftClient() {
        (void)kill(id_, SIGKILL);
        (void)waitpid(id_, nullptr, 0);
    }
    LeftClient(const LeftClient&) = delete;
    LeftClient& operator=(const LeftClient&) = delete;

  private:
    const pid_t id_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_LEFT_CLIENT_H_
