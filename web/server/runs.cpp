// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// runs.cpp - the runs of velkctl that requests may cause. packaging/sudoers.d/velk-web has the same
// words.
#include "web/server/runs.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace velkweb {
namespace {

constexpr int kDocumentSchema = 1;
constexpr int kLongestWindow = 24 * 60 * 60;
constexpr size_t kIdLength = 4;
constexpr size_t kLongestName = 64;
// A page waits no longer for a wireless daemon that does not answer.
constexpr char kCheckTime[] = "--timeout=20";

Planned Refused(const std::string& message, const std::string& remedy = {}) {
    return {.trouble = Trouble{.message = message, .remedy = remedy}};
}

// Returns the first member that the request does not have; nothing if all are known.
std::optional<Planned> RefuseOthers(const Json& body,
                                    std::initializer_list<std::string_view> known) {
    for (const auto& [name, value] : body.items()) {
        if (std::ranges::find(known, name) == known.end()) {
            return Refused("the request has an unknown member");
        }
    }
    return std::nullopt;
}

Json MemberOf(const Json& body, const char* name) {
    return body.contains(name) ? body[name] : Json(nullptr);
}

// A member that is missing or null is false.
std::optional<bool> FlagIn(const Json& body, const char* name) {
    const Json value = MemberOf(body, name);
    if (value.is_null()) {
        return false;
    }
    return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

bool IsId(std::string_view text) {
    return text.size() == kIdLength && std::ranges::all_of(text, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
           });
}

bool IsSettingName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName && name.front() != '-' &&
           std::ranges::all_of(name, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
           });
}

std::string DocumentWith(const Json& settings) {
    Json document;
    document["schema"] = kDocumentSchema;
    document["settings"] = settings;
    return TextOf(document);
}

// Adds the seconds to confirm the change. Returns false if they are not valid.
bool AddWindow(const Json& body, VelkctlRun& run) {
    const Json seconds = MemberOf(body, "confirm_within");
    if (seconds.is_null()) {
        return true;
    }
    if (!seconds.is_number_unsigned() || seconds.get<uint64_t>() > kLongestWindow) {
        return false;
    }
    run.words.push_back("--confirm-within=" + std::to_string(seconds.get<uint64_t>()));
    return true;
}

// A verb with the id of a change, which may be missing or null.
Planned PlanWithId(const Json& body, const char* verb, const char* member) {
    if (std::optional<Planned> refusal = RefuseOthers(body, {member})) {
        return *std::move(refusal);
    }
    const Json id = MemberOf(body, member);
    Planned planned{.run = {.words = {verb}}};
    if (id.is_null()) {
        return planned;
    }
    if (!id.is_string() || !IsId(id.get<std::string>())) {
        return Refused(std::string(member) + ": not the id of a change",
                       "give four letters and digits, as the history shows them");
    }
    planned.run.words.push_back(id.get<std::string>());
    return planned;
}

}  // namespace

Planned PlanCheck(const Json& body) {
    if (std::optional<Planned> refusal = RefuseOthers(body, {"settings"})) {
        return *std::move(refusal);
    }
    const Json settings = MemberOf(body, "settings");
    if (!settings.is_object()) {
        return Refused("settings: not an object", "give an object with names and values");
    }
    return {.run = {{"apply", "-", "--check", kCheckTime}, DocumentWith(settings)}};
}

Planned PlanApply(const Json& body) {
    if (std::optional<Planned> refusal =
            RefuseOthers(body, {"settings", "restart", "confirm_within", "dry_run"})) {
        return *std::move(refusal);
    }
    const Json settings = MemberOf(body, "settings");
    if (!settings.is_object()) {
        return Refused("settings: not an object", "give an object with names and values");
    }
    const std::optional<bool> restart = FlagIn(body, "restart");
    const std::optional<bool> dry_run = FlagIn(body, "dry_run");
    if (!restart || !dry_run) {
        return Refused("restart and dry_run: not true or false");
    }
    Planned planned{.run = {{"apply", "-"}, DocumentWith(settings)}};
    planned.run.words.emplace_back(*restart ? "--restart=auto" : "--restart=never");
    if (!AddWindow(body, planned.run)) {
        return Refused("confirm_within: not a number of seconds up to 86400");
    }
    if (*dry_run) {
        planned.run.words.emplace_back("--dry-run");
    }
    return planned;
}

Planned PlanConfirm(const Json& body) {
    return PlanWithId(body, "confirm", "id");
}

Planned PlanRevert(const Json& body) {
    return PlanWithId(body, "revert", "id");
}

Planned PlanRestart(const Json& body) {
    if (std::optional<Planned> refusal = RefuseOthers(body, {"interface", "confirm_within"})) {
        return *std::move(refusal);
    }
    if (!MemberOf(body, "confirm_within").is_null()) {
        return Refused("confirm_within: a restart changes no setting that could be put back",
                       "leave it out");
    }
    const Json interface = MemberOf(body, "interface");
    if (interface != "eth0" && interface != "eth1") {
        return Refused("interface: not valid", "give eth0 or eth1");
    }
    return {.run = {.words = {"restart", interface.get<std::string>()}}};
}

Planned PlanUndo(const Json& body) {
    return PlanWithId(body, "undo", "entry");
}

Planned PlanDescribe(const std::string& name) {
    if (!IsSettingName(name)) {
        return Refused("setting: not the name of a setting");
    }
    return {.run = {.words = {"describe", name}}};
}

}  // namespace velkweb
