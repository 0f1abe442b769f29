// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// call_verb.cpp - the verb that runs a command of the library without checks.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/find_row.h"
#include "velk/request.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/device.h"
#include "velkctl/changes/secret_source.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/unrecorded_change.h"
#include "velkctl/preview/preview_report.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/report/result_codes.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/hex.h"
#include "velkctl/text/masking.h"
#include "velkctl/text/numbers.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// 512 bytes as hex digits, with room for separators.
constexpr size_t kLongestDataText = 4096;

struct TypeWord {
    std::string_view word;
    velk_command_type type;
};

constexpr std::array<TypeWord, 3> kTypeWords{{
    {"get", VELK_GET},
    {"set", VELK_SET},
    {"restart", VELK_RESTART},
}};

std::optional<velk_command_type> ParseType(std::string_view word) {
    const TypeWord* row = velk::FindRow(kTypeWords, word, &TypeWord::word);
    return row == nullptr ? std::nullopt : std::optional(row->type);
}

std::string UnknownType(const Invocation& invocation) {
    std::vector<std::string> words(kTypeWords.size());
    std::ranges::transform(kTypeWords, words.begin(), [](const TypeWord& row) { return row.word; });
    const std::string& word = invocation.words[0];
    return invocation.Shown(word) + " is not a command type" +
           DidYouMean(word, words, "give " + OneOf(words));
}

// The command that the words of the verb make, or the problem with one of them.
struct ParsedCommand {
    Command command{};
    std::string problem{};
};

ParsedCommand ParseCommand(const Invocation& invocation) {
    const std::vector<std::string>& words = invocation.words;
    const std::optional<velk_command_type> type = ParseType(words[0]);
    if (!type) {
        return {{}, UnknownType(invocation)};
    }
    const std::optional<uint32_t> id = ParseNumber<uint32_t>(words[1]);
    if (!id) {
        return {
            {},
            invocation.Shown(words[1]) + " is not a command id; give a decimal number such as 108"};
    }
    const std::string_view interface = words.size() > 2 ? words[2] : std::string_view();
    if (interface.size() > VELK_INTERFACE_SIZE) {
        return {{},
                invocation.Shown(interface) +
                    " is too long for an interface; give eth0, eth1 or another name of at "
                    "most 16 bytes"};
    }
    return {{*type, *id, interface}, {}};
}

Parsed ParseText(const std::string& text) {
    Parsed parsed;
    if (text.size() > parsed.data.size()) {
        return Unparsable(std::to_string(text.size()) + " bytes are too many; give at most 512");
    }
    (void)text.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

// Returns the data bytes of an option. The option may name a source: the bytes may be a key.
Parsed ParseSource(const std::string& word, Parsed (*parse)(const std::string& text)) {
    const Secret source = ReadSecret(word, kLongestDataText);
    return source.problem.empty() ? parse(source.text) : Unparsable(source.problem);
}

Parsed ParseHexText(const std::string& text) {
    return ParseHex(text);
}

// Returns the data bytes of --text or --hex; without them, zeros.
Parsed ParseData(const Invocation& invocation) {
    if (invocation.text && invocation.hex) {
        return Unparsable("--text and --hex exclude each other; give one of them");
    }
    Parsed parsed;
    if (invocation.text) {
        parsed = ParseSource(*invocation.text, ParseText);
    } else if (invocation.hex) {
        parsed = ParseSource(*invocation.hex, ParseHexText);
    }
    if (!parsed.ok()) {
        parsed.problem.insert(0, invocation.text ? "--text: " : "--hex: ");
    }
    return parsed;
}

bool TakesType(const Setting& setting, velk_command_type type) {
    return (type == VELK_GET && setting.can_get()) || (type == VELK_SET && setting.can_set());
}

// Returns the interfaces that a command takes, or an empty name if it takes none. Returns nothing
// if the command does not exist.
std::vector<std::string> InterfacesOf(velk_command_type type, uint32_t id) {
    if (type == VELK_RESTART && id == VELK_CMD_RESTART) {
        return {VELK_WIRED_INTERFACE, VELK_WIRELESS_INTERFACE};
    }
    std::vector<std::string> interfaces;
    for (const Setting& setting : Settings()) {
        if (setting.row->id == id && TakesType(setting, type)) {
            interfaces.emplace_back(setting.interface);
        }
    }
    return interfaces;
}

// Returns the reason why there are no interfaces for a command: "101 takes no set".
std::string MissingCommand(const Command& command) {
    const std::string id = std::to_string(command.id);
    const bool has_other_type = std::ranges::any_of(kTypeWords, [&](const TypeWord& row) {
        return !InterfacesOf(row.type, command.id).empty();
    });
    const TypeWord* type = velk::FindRow(kTypeWords, command.type, &TypeWord::type);
    return has_other_type ? id + " takes no " + std::string(type->word)
                          : "command " + id + " does not exist";
}

// Returns the reason why the library does not take a command: "108 takes eth0 or eth1". Empty if
// it takes the command with another value.
std::string RefusedCommand(const Command& command) {
    const std::vector<std::string> interfaces = InterfacesOf(command.type, command.id);
    if (interfaces.empty()) {
        return MissingCommand(command);
    }
    if (std::ranges::find(interfaces, command.interface) != interfaces.end()) {
        return {};
    }
    const std::string id = std::to_string(command.id);
    return id + (interfaces.front().empty() ? " takes no interface"
                                            : " takes the interface " + OneOf(interfaces));
}

// Returns the text for people. The result of a failure comes last.
std::string ResultText(const Answer& answer) {
    if (answer.ok()) {
        return DescribeResult(answer.result);
    }
    return MessageLines(
        {.message = FailureReason(answer), .result = answer.result, .detail = answer.note});
}

void ReportData(const Data& data, bool is_masked, Report& report) {
    report.Text(is_masked ? std::string(kMask) + "\n" : Dump(data));
    report.Member("data", is_masked ? Json(kMask) : Json(ToHex(UsedBytes(data))));
}

// A failure is a normal answer of this verb. In JSON it is also one of the errors.
void ReportAnswer(const Command& command, const Answer& answer, bool is_masked, Report& report) {
    if (answer.timed_out) {
        report.Complain(ProblemOf("call: command " + std::to_string(command.id), "", answer));
        return;
    }
    if (!answer.ok()) {
        report.ShowToolOutput();
    }
    report.Text(ResultText(answer) + "\n");
    report.Member("result", ResultInJson(answer.result));
    if (!answer.ok() && report.is_json()) {
        report.Complain(ProblemOf("call: command " + std::to_string(command.id), "", answer));
    }
    if (command.type == VELK_GET) {
        ReportData(answer.data, is_masked, report);
    }
}

// A get changes nothing, so a trial of it would show nothing.
ExitStatus TryCall(const Command& command, const Data& data, const Invocation& invocation,
                   Report& report) {
    if (command.type == VELK_GET) {
        return report.Refuse("call: --dry-run is for set and restart; leave it out for get");
    }
    const TrialStep step{command.type, command.id, std::string(command.interface), data};
    return ReportTrial(RunTrial({step}, invocation.limits), {step}, report);
}

ExitStatus RunCommand(const Command& command, const Data& data, const Invocation& invocation,
                      Report& report) {
    Answer answer = Device(invocation.limits, report)
                        .Execute(command, data, "command " + std::to_string(command.id));
    if (answer.known_result() == LIB_VELK_INVALID_PARAMETER) {
        answer.note = RefusedCommand(command);
    }
    const bool is_secret = NamesSecret(invocation.words[1]);
    ReportAnswer(command, answer, IsMasked(is_secret, invocation.show_secrets, answer.data),
                 report);
    return StatusOf(answer);
}

}  // namespace

ExitStatus RunCall(const Invocation& invocation, Report& report) {
    const ParsedCommand parsed = ParseCommand(invocation);
    if (!parsed.problem.empty()) {
        return report.Refuse("call: " + parsed.problem);
    }
    const Parsed data = ParseData(invocation);
    if (!data.ok()) {
        return report.Refuse("call: " + data.problem);
    }
    const Command& command = parsed.command;
    if (invocation.dry_run) {
        return TryCall(command, data.data, invocation, report);
    }
    if (command.type == VELK_GET) {
        return RunCommand(command, data.data, invocation, report);
    }
    const UnrecordedChange change("call", invocation.limits.wait_seconds, report);
    return change.is_refused() ? change.refusal()
                               : RunCommand(command, data.data, invocation, report);
}

}  // namespace velkctl
