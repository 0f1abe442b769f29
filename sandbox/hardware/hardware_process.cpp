// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// hardware_process.cpp - the process that simulates the cable, adapter and router.
#include "sandbox/hardware/hardware_process.h"

#include <cerrno>
#include <exception>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "sandbox/control/orders.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr int kHardwareFailed = 1;

void Serve(Hardware& hardware, const OrderSocket& orders) {
    for (;;) {
        std::vector<pollfd> waiting = hardware.PollFds();
        waiting.push_back({orders.inside(), POLLIN, 0});
        waiting.push_back({orders.outside(), POLLIN, 0});
        if (poll(waiting.data(), waiting.size(), -1) == -1) {
            continue;
        }
        for (const pollfd& ready : waiting) {
            if (ready.revents == 0) {
                continue;
            }
            if (ready.fd == orders.inside() || ready.fd == orders.outside()) {
                orders.Answer(ready.fd,
                              [&hardware](const std::string& order) { hardware.Execute(order); });
            } else {
                hardware.ForwardFrame(ready);
            }
        }
    }
}

// The hardware process must not read the command's input or receive signals of the terminal.
void DetachFromTerminal() {
    (void)setsid();
    const velk::UniqueFd null_device(open("/dev/null", O_RDWR | O_CLOEXEC));
    (void)dup2(null_device.get(), STDIN_FILENO);
    (void)dup2(null_device.get(), STDOUT_FILENO);
}

void Report(velk::UniqueFd& report, const std::string& text) {
    (void)!write(report.get(), text.data(), text.size());
    (void)report.Reset();
}

[[noreturn]] void RunHardware(const HardwareOptions& options, velk::UniqueFd control_socket,
                              velk::UniqueFd& report) {
    (void)prctl(PR_SET_NAME, "velk-hardware");
    DetachFromTerminal();
    try {
        Hardware hardware(options);
        const OrderSocket orders(std::move(control_socket));
        Report(report, hardware.Start());
        Serve(hardware, orders);
    } catch (const std::exception& error) {
        Report(report, error.what());
    }
    _exit(kHardwareFailed);
}

std::string ReadReport(const velk::UniqueFd& report) {
    std::string text;
    char part[256];
    for (ssize_t size; (size = read(report.get(), part, sizeof(part))) > 0;) {
        text.append(part, static_cast<size_t>(size));
    }
    return text;
}

}  // namespace

std::string StartHardware(const HardwareOptions& options, velk::UniqueFd control_socket) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    const pid_t hardware = fork();
    if (hardware == -1) {
        Fail("cannot start a process", errno);
    }
    if (hardware == 0) {
        RunHardware(options, std::move(control_socket), write_end);
    }
    (void)write_end.Reset();
    return ReadReport(read_end);
}

void MoveHardware(const std::string& part, const std::string& position, const std::string& device) {
    SendOrder(part + " " + position, device);
}

}  // namespace sandbox
