// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_trace.cpp - writes down the steps of real calls of the library.
#include "velkctl/preview/call_trace.h"

#include <algorithm>
#include <iterator>

#include "velkctl/call/library_observer.h"
#include "velkctl/preview/copy_plan.h"
#include "velkctl/preview/preview_report.h"

namespace velkctl {
namespace {

std::vector<FileImage> PresentFiles() {
    std::vector<FileImage> files;
    const std::vector<std::string> paths = ChangeableFiles();
    std::ranges::transform(paths, std::back_inserter(files), ReadFileImage);
    return files;
}

}  // namespace

CallTrace::CallTrace() : observer_(log_), before_(PresentFiles()) {
    SetObserver(&observer_);
}

CallTrace::~CallTrace() {
    SetObserver(nullptr);
}

void CallTrace::Print(Report& report) const {
    ReportTrace(before_, PresentFiles(), log_.Read(), report);
}

}  // namespace velkctl
