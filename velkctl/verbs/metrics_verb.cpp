// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// metrics_verb.cpp - the verb that prints the state of the device for a monitoring agent.
#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/replaced_file.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/metrics.h"
#include "velkctl/report/report.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/device_states.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The agent runs as another user.
constexpr mode_t kMetricsMode = 0644;

constexpr std::string_view kLeaseEnd = ".lease";
constexpr std::string_view kAddressEnd = ".address";

Sample NumberOf(int64_t value) {
    return {.value = value};
}

Sample SampleOf(const PartState& state, int64_t value) {
    return {.labels = {{"part", state.name}}, .value = value};
}

std::string InterfaceOf(const PartState& state) {
    return state.name.substr(0, state.name.find('.'));
}

Sample FindingSample(const Finding& finding) {
    const char* severity = finding.severity == Severity::kProblem ? "problem" : "warning";
    return {.labels = {{"severity", severity},
                       {"subject", Printable(finding.subject)},
                       {"effect", Printable(finding.effect)}},
            .value = 1};
}

// Counts findings with the same labels. Descriptions are left out: they may have a process or a
// time, and the agent would keep each of them as a series of its own.
Metric FindingMetric(const Findings& findings) {
    Metric metric{"velk_doctor_finding",
                  "Findings of velkctl doctor with this subject and effect."};
    for (const Finding& finding : findings) {
        Sample sample = FindingSample(finding);
        const auto same = std::ranges::find(metric.samples, sample.labels, &Sample::labels);
        if (same == metric.samples.end()) {
            metric.samples.push_back(std::move(sample));
        } else {
            ++same->value;
        }
    }
    return metric;
}

void AppendDoctor(Report& report, Metrics& metrics) {
    const Findings findings = ExamineDevice(report);
    const size_t problems = CountOf(findings, Severity::kProblem);
    metrics.push_back({"velk_doctor_problems",
                       "Problems that velkctl doctor finds.",
                       {NumberOf(static_cast<int64_t>(problems))}});
    metrics.push_back({"velk_doctor_warnings",
                       "Warnings of velkctl doctor.",
                       {NumberOf(static_cast<int64_t>(findings.size() - problems))}});
    metrics.push_back(FindingMetric(findings));
}

Metric AddressMetric(const PartStates& states) {
    Metric metric{"velk_address_info",
                  "1, with the configured and the running addresses of an interface."};
    for (const PartState& state : states) {
        if (state.name.ends_with(kAddressEnd)) {
            metric.samples.push_back({.labels = {{"interface", InterfaceOf(state)},
                                                 {"configured", Printable(state.configured)},
                                                 {"running", Printable(state.running)}},
                                      .value = 1});
        }
    }
    return metric;
}

Metric LeaseMetric(const PartStates& states) {
    Metric metric{"velk_lease_expiry_timestamp_seconds",
                  "The end of the lease of an interface, in seconds since 1970."};
    for (const PartState& state : states) {
        if (state.name.ends_with(kLeaseEnd) && state.expiry) {
            metric.samples.push_back(
                {.labels = {{"interface", InterfaceOf(state)}}, .value = *state.expiry});
        }
    }
    return metric;
}

void AppendStatesTo(const PartStates& states, Metrics& metrics) {
    Metric differs{"velk_status_differs", "1 if a part does not run as it is configured."};
    Metric is_on{"velk_status_on", "1 if a part is connected, running, used or held."};
    for (const PartState& state : states) {
        if (!state.configured.empty()) {
            differs.samples.push_back(SampleOf(state, state.differs ? 1 : 0));
        }
        if (state.is_on) {
            is_on.samples.push_back(SampleOf(state, *state.is_on ? 1 : 0));
        }
    }
    metrics.push_back(std::move(differs));
    metrics.push_back(std::move(is_on));
    metrics.push_back(AddressMetric(states));
    metrics.push_back(LeaseMetric(states));
}

// Only its owner can read the journal. Without it, the metric is missing: 0 may be wrong.
void AppendChange(Metrics& metrics) {
    if (ReadJournal().error != 0) {
        return;
    }
    const std::optional<StoredEntry> stored = FindUnconfirmed();
    metrics.push_back({"velk_change_waiting",
                       "1 if a change waits for its confirmation, or is being made or put back.",
                       {NumberOf(stored ? 1 : 0)}});
}

Metrics ReadMetrics(const Device& device, Report& report) {
    Metrics metrics;
    metrics.push_back({"velk_info",
                       "1, with the version of velkctl.",
                       {{.labels = {{"version", VELKCTL_VERSION}}, .value = 1}}});
    metrics.push_back({"velk_device",
                       "0 if most files of the device are missing, as on another machine.",
                       {NumberOf(DescribeOtherMachine().empty() ? 1 : 0)}});
    AppendDoctor(report, metrics);
    AppendStatesTo(ReadStates("", device), metrics);
    AppendChange(metrics);
    return metrics;
}

ExitStatus WriteMetrics(const std::string& path, const Metrics& metrics, Report& report) {
    const int error = ReplaceFile(path, MetricsText(metrics), kMetricsMode);
    if (error == 0) {
        return ExitStatus::kDone;
    }
    report.Complain(Problem{.message = Printable(path) + ": could not be written",
                            .detail = strerror(error),
                            .remedy = "give a FILE in a folder that this user may write"});
    return ExitStatus::kFailed;
}

}  // namespace

ExitStatus RunMetrics(const Invocation& invocation, Report& report) {
    if (invocation.output && !IsReplaceable(*invocation.output)) {
        return report.Refuse("metrics: " + invocation.Shown(*invocation.output) +
                             " is no file; give the name of a file");
    }
    const Device device(invocation.limits, report);
    const Metrics metrics = ReadMetrics(device, report);
    report.Member("metrics", MetricsInJson(metrics));
    if (invocation.output) {
        return WriteMetrics(*invocation.output, metrics, report);
    }
    report.Text(MetricsText(metrics));
    return ExitStatus::kDone;
}

}  // namespace velkctl
