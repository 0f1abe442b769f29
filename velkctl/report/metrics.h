// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// metrics.h - numbers for a monitoring agent, in the Prometheus text format.
#ifndef VELKCTL_REPORT_METRICS_H_
#define VELKCTL_REPORT_METRICS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "velkctl/report/report.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

struct Sample {
    std::vector<std::pair<std::string, std::string>> labels{};  // name and value
    int64_t value = 0;
};

// A gauge: a number that rises and falls. No two of its samples have the same labels.
struct Metric {
    std::string_view name;
    std::string_view help;
    std::vector<Sample> samples{};
};

using Metrics = std::vector<Metric>;

// Returns the lines of all metrics that have a sample: help, type, a line for each sample. Without
// times: the agent writes its own.
std::string MetricsText(const Metrics& metrics);

// Returns [{"name": ..., "help": ..., "samples": [{"labels": {...}, "value": ...}]}].
Json MetricsInJson(const Metrics& metrics);

}  // namespace velkctl

#endif  // VELKCTL_REPORT_METRICS_H_
