// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_trace.h - writes down the steps of real calls of the library.
#ifndef VELKCTL_PREVIEW_CALL_TRACE_H_
#define VELKCTL_PREVIEW_CALL_TRACE_H_

#include <vector>

#include "velkctl/files/file_image.h"
#include "velkctl/preview/event_log.h"
#include "velkctl/preview/observers.h"
#include "velkctl/report/report.h"

namespace velkctl {

// During its life, the steps of all calls of this process and its children are written down.
class CallTrace {
  public:
    CallTrace();
    ~CallTrace();
    CallTrace(const CallTrace&) = delete;
    CallTrace& operator=(const CallTrace&) = delete;

    // Shows the steps so far, and the files that have changed since its beginning.
    void Print(Report& report) const;

  private:
    const EventLog log_;
    TraceObserver observer_;
    std::vector<FileImage> before_;
};

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_CALL_TRACE_H_
