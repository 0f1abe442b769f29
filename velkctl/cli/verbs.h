// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// verbs.h - the table of velkctl's verbs, with the rules of each.
#ifndef VELKCTL_CLI_VERBS_H_
#define VELKCTL_CLI_VERBS_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/call/time_limits.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The arguments after a verb.
struct Invocation {
    std::vector<std::string> words{};  // all arguments that are not options
    std::optional<std::string> text{};
    std::optional<std::string> hex{};
    std::optional<std::string> root{};
    std::optional<std::string> output{};          // a file
    std::optional<std::string> wait{};            // seconds, unparsed
    std::optional<std::string> timeout{};         // seconds, unparsed
    TimeLimits limits{};                          // the same, parsed
    std::optional<std::string> restart{};         // auto, never or interfaces
    std::optional<std::string> only{};            // names and patterns, with commas between them
    std::optional<std::string> confirm_within{};  // seconds, unparsed
    std::optional<std::string> confirm_if{};      // a command for the shell
    bool json = false;
    bool show_secrets = false;
    bool notify_only = false;
    bool bare_value = false;
    bool quiet = false;
    bool verbose = false;
    bool force = false;
    bool no_verify = false;
    bool no_journal = false;
    bool boot = false;
    bool keep = false;
    bool dry_run = false;
    bool check = false;
    bool trace = false;
    bool no_pager = false;
    bool include_secrets = false;
    bool ask = false;
    bool help = false;
    bool version = false;
    bool beside_secret = false;  // any word may be a secret

    // Returns 'word' for a message, or a placeholder if the word may be a secret.
    std::string Shown(std::string_view word) const;
};

// An option that takes a value.
struct VerbOption {
    std::string_view name;   // "--text"
    std::string_view value;  // the name of its value in the help
    std::string_view help;
    std::optional<std::string> Invocation::*target;
    std::string_view implied{};  // the value without "="; empty: the next argument is the value
};

// An option without a value.
struct VerbFlag {
    std::string_view name;  // "--show-secrets"
    std::string_view help;
    bool Invocation::*target;
};

// The words that a verb takes after its options.
struct WordRules {
    size_t least = 0;
    size_t most = 0;
    bool first_is_interface = false;  // the first word, if given, is eth0 or eth1
    bool takes_value = false;         // a value follows the name of a setting
    bool second_is_number = false;    // the second word may be a number
};

struct Verb {
    std::string_view name;
    std::string_view arguments;
    std::string_view summary;  // one line, for the list of verbs
    std::string_view help;     // further text, with examples
    WordRules words;
    std::span<const VerbOption> options;
    std::span<const VerbFlag> flags;
    ExitStatus (*run)(const Invocation& invocation, Report& report);
    // Reports the problems with the words, if an option has one already and the verb does not run.
    void (*check_words)(const Invocation& invocation, Report& report) = nullptr;
    // Before a verb that works with the device, velkctl takes back a change that was not confirmed
    // in time.
    bool works_with_device = true;
};

std::span<const Verb> Verbs();

// The options that velkctl takes without a verb, as a row of the same table.
const Verb& Tool();

ExitStatus RunGet(const Invocation& invocation, Report& report);
ExitStatus RunSet(const Invocation& invocation, Report& report);
ExitStatus RunShow(const Invocation& invocation, Report& report);
void CheckWordsOfGet(const Invocation& invocation, Report& report);
void CheckWordsOfSet(const Invocation& invocation, Report& report);
void CheckWordsOfShow(const Invocation& invocation, Report& report);

ExitStatus RunList(const Invocation& invocation, Report& report);
ExitStatus RunDescribe(const Invocation& invocation, Report& report);
ExitStatus RunRestart(const Invocation& invocation, Report& report);
ExitStatus RunCall(const Invocation& invocation, Report& report);
ExitStatus RunExplain(const Invocation& invocation, Report& report);
ExitStatus RunStatus(const Invocation& invocation, Report& report);
ExitStatus RunMetrics(const Invocation& invocation, Report& report);
ExitStatus RunDoctor(const Invocation& invocation, Report& report);
ExitStatus RunApply(const Invocation& invocation, Report& report);
ExitStatus RunImport(const Invocation& invocation, Report& report);
ExitStatus RunExport(const Invocation& invocation, Report& report);
ExitStatus RunDiff(const Invocation& invocation, Report& report);
ExitStatus RunConfirm(const Invocation& invocation, Report& report);
ExitStatus RunExtend(const Invocation& invocation, Report& report);
ExitStatus RunRevert(const Invocation& invocation, Report& report);
ExitStatus RunPending(const Invocation& invocation, Report& report);
ExitStatus RunUndo(const Invocation& invocation, Report& report);
ExitStatus RunHistory(const Invocation& invocation, Report& report);
ExitStatus RunRecover(const Invocation& invocation, Report& report);
ExitStatus RunSelftest(const Invocation& invocation, Report& report);
ExitStatus RunCapture(const Invocation& invocation, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CLI_VERBS_H_
