// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_steps.cpp - the steps of the library outside its own memory, as text or JSON.
#include "velkctl/preview/library_steps.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "lib/base/find_row.h"
#include "velk/wlan.h"
#include "velkctl/preview/masked_line.h"
#include "velkctl/preview/observers.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

struct KindWord {
    EventKind kind;
    std::string_view word;
};

constexpr std::array<KindWord, 6> kKindWords{{
    {EventKind::kShellLine, "shell"},
    {EventKind::kShellLineNotRun, "not_run"},
    {EventKind::kLogLine, "log"},
    {EventKind::kWait, "wait"},
    {EventKind::kMessage, "message"},
    {EventKind::kMessageNotSent, "not_sent"},
}};
constexpr size_t kKindWidth = 10;
constexpr size_t kLongestRepeated = 3;  // steps of one look at the link
constexpr size_t kLeastRepeated = 3;

std::string MeaningOf(std::string_view message) {
    switch (MessageType(message)) {
        case VELK_WLAN_RESTARTED:
            return "to the wireless daemon: eth1 was restarted";
        case VELK_WLAN_STORE:
            return "to the wireless daemon: store this configuration";
        case VELK_WLAN_REPORT:
            return "to the wireless daemon: report the configuration";
        default:
            return "to the wireless daemon: report the state";
    }
}

std::string TextOfEvent(const Event& event) {
    if (event.kind == EventKind::kMessage || event.kind == EventKind::kMessageNotSent) {
        return MeaningOf(event.text);
    }
    return event.kind == EventKind::kWait ? event.text + " s" : MaskedLine(event.text);
}

// Returns the events between the beginning of a command of changes and the next command.
std::vector<Event> EventsOfChanges(const std::vector<Event>& events) {
    std::vector<Event> found;
    bool is_change = true;
    for (const Event& event : events) {
        if (event.kind == EventKind::kCommand) {
            is_change = event.text != "get";
        } else if (is_change) {
            found.push_back(event);
        }
    }
    return found;
}

using Steps = std::vector<LibraryStep>;

// True if the same steps follow directly, `size` of them.
bool IsRepeated(const Steps& steps, size_t first, size_t size) {
    const auto begin = steps.begin() + static_cast<std::ptrdiff_t>(first);
    const auto end = begin + static_cast<std::ptrdiff_t>(size);
    return first + 2 * size <= steps.size() && std::equal(begin, end, end);
}

// Returns how often the steps are repeated directly after their first time.
size_t Repetitions(const Steps& steps, size_t first, size_t size) {
    size_t count = 0;
    while (IsRepeated(steps, first + count * size, size)) {
        ++count;
    }
    return count;
}

LibraryStep Again(size_t size, size_t count) {
    const std::string steps =
        size == 1 ? "the last step" : "the last " + std::to_string(size) + " steps";
    return {"again", steps + ", " + std::to_string(count) + " times"};
}

// Link detection looks again each second for a minute.
Steps WithoutRepetitions(const Steps& steps) {
    Steps listed;
    for (size_t i = 0; i < steps.size();) {
        size_t size = 1;
        while (size <= kLongestRepeated && Repetitions(steps, i, size) < kLeastRepeated) {
            ++size;
        }
        const bool is_repeated = size <= kLongestRepeated;
        size = is_repeated ? size : 1;
        listed.insert(listed.end(), steps.begin() + static_cast<std::ptrdiff_t>(i),
                      steps.begin() + static_cast<std::ptrdiff_t>(i + size));
        const size_t count = is_repeated ? Repetitions(steps, i, size) : 0;
        if (is_repeated) {
            listed.push_back(Again(size, count));
        }
        i += size * (count + 1);
    }
    return listed;
}

}  // namespace

std::vector<LibraryStep> StepsIn(const std::vector<Event>& events) {
    Steps steps;
    for (const Event& event : EventsOfChanges(events)) {
        const KindWord* row = velk::FindRow(kKindWords, event.kind, &KindWord::kind);
        if (row != nullptr) {
            steps.push_back({std::string(row->word), TextOfEvent(event)});
        }
    }
    return WithoutRepetitions(steps);
}

long SecondsWaited(const std::vector<Event>& events) {
    long seconds = 0;
    for (const Event& event : EventsOfChanges(events)) {
        seconds += event.kind == EventKind::kWait ? strtol(event.text.c_str(), nullptr, 10) : 0;
    }
    return seconds;
}

std::string TextOf(const std::vector<LibraryStep>& steps) {
    std::string text;
    for (const LibraryStep& step : steps) {
        std::string kind = step.kind;
        std::ranges::replace(kind, '_', ' ');
        kind.resize(std::max(kKindWidth, kind.size() + 1), ' ');
        text.append("  ").append(kind).append(step.text).append("\n");
    }
    return text;
}

Json InJson(const std::vector<LibraryStep>& steps) {
    Json list = Json::array();
    for (const LibraryStep& step : steps) {
        list.push_back({{"kind", step.kind}, {"text", step.text}});
    }
    return list;
}

}  // namespace velkctl
