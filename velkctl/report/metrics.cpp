// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// metrics.cpp - numbers for a monitoring agent, in the Prometheus text format.
#include "velkctl/report/metrics.h"

#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Returns the text with a backslash before each backslash and quote, and \n for a newline.
std::string LabelText(std::string_view text) {
    std::string escaped;
    for (const char byte : text) {
        if (byte == '\n') {
            escaped.append("\\n");
            continue;
        }
        if (byte == '\\' || byte == '"') {
            escaped.push_back('\\');
        }
        escaped.push_back(byte);
    }
    return escaped;
}

// Returns {name="value",...}; empty without labels.
std::string LabelsText(const Sample& sample) {
    std::string text;
    for (const auto& [name, value] : sample.labels) {
        text.append(text.empty() ? "{" : ",");
        text.append(name).append("=\"").append(LabelText(value)).append("\"");
    }
    return text.empty() ? text : text.append("}");
}

std::string MetricText(const Metric& metric) {
    std::string text;
    text.append("# HELP ").append(metric.name).append(" ").append(metric.help).append("\n");
    text.append("# TYPE ").append(metric.name).append(" gauge\n");
    for (const Sample& sample : metric.samples) {
        text.append(metric.name).append(LabelsText(sample)).append(" ");
        text.append(std::to_string(sample.value)).append("\n");
    }
    return text;
}

Json SampleInJson(const Sample& sample) {
    Json labels = Json::object();
    for (const auto& [name, value] : sample.labels) {
        labels[name] = value;
    }
    Json object;
    object["labels"] = std::move(labels);
    object["value"] = sample.value;
    return object;
}

}  // namespace

std::string MetricsText(const Metrics& metrics) {
    std::string text;
    for (const Metric& metric : metrics) {
        text.append(metric.samples.empty() ? "" : MetricText(metric));
    }
    return text;
}

Json MetricsInJson(const Metrics& metrics) {
    Json list = Json::array();
    for (const Metric& metric : metrics) {
        Json samples = Json::array();
        for (const Sample& sample : metric.samples) {
            samples.push_back(SampleInJson(sample));
        }
        Json object;
        object["name"] = metric.name;
        object["help"] = metric.help;
        object["samples"] = std::move(samples);
        list.push_back(std::move(object));
    }
    return list;
}

}  // namespace velkctl
