// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// read_back.h - whether the device holds the value that was set.
#ifndef VELKCTL_DOCTOR_READ_BACK_H_
#define VELKCTL_DOCTOR_READ_BACK_H_

#include <optional>

#include "velkctl/call/device.h"
#include "velkctl/call/files_before.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

struct ReadBack {
    std::optional<bool> held;  // nothing if that cannot be read
    ExitStatus status;         // the exit status of velkctl
};

// Reads a setting back that the library has just reported as set. Complains if the device does not
// hold the value, with the value that it holds, the likely cause and the files that have lost their
// text since `before`. The library cannot notice: it ignores the exit status of its shell lines,
// and an edit that finds no line to change is no failure to it. A value that is neither the wanted
// one nor that of `before`, and that no finding explains, was set by another program since: a note
// says so, and the set is done. The value of `before` may be that of another program, too: the
// complaint names both reasons. A file is read again after a short time: another program may be
// changing it. A setting that cannot be read, or an address while a lease is shown, cannot be
// compared. For these it looks only for findings that prevent the set. If there are none, a note
// says that the value was not checked.
ReadBack ReadSettingBack(const Setting& setting, const Data& wanted, const FilesBefore& before,
                         const Device& device, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_READ_BACK_H_
