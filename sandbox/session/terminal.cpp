// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// terminal.cpp - the controlling terminal of this program.
#include "sandbox/session/terminal.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace sandbox {

Terminal::Terminal() : fd_(open("/dev/tty", O_RDWR | O_CLOEXEC)), group_(getpgrp()) {
    is_foreground_ = tcgetpgrp(fd_.get()) == group_ && isatty(STDIN_FILENO) == 1;
}

void Terminal::HandOver() const {
    if (is_foreground_) {
        (void)setpgid(0, 0);
        SetForeground(getpid());
    }
}

void Terminal::TakeBack() const {
    if (is_foreground_) {
        SetForeground(group_);
    }
}

void Terminal::SetForeground(pid_t group) const {
    (void)signal(SIGTTOU, SIG_IGN);
    (void)tcsetpgrp(fd_.get(), group);
    (void)signal(SIGTTOU, SIG_DFL);
}

void IgnoreTerminalSignals() {
    (void)signal(SIGINT, SIG_IGN);
    (void)signal(SIGQUIT, SIG_IGN);
    (void)signal(SIGCHLD, SIG_DFL);
}

}  // namespace sandbox
