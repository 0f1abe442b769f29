// verbs.h - what velkctl can be told to do.
#ifndef VELKCTL_CLI_VERBS_H_
#define VELKCTL_CLI_VERBS_H_

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// The arguments behind a verb, as its row says they may be.
struct Invocation {
    std::vector<std::string> words{};  // those that are no options
    std::optional<std::string> text{};
    std::optional<std::string> hex{};
    std::optional<std::string> wait{};     // seconds, unparsed
    std::optional<std::string> timeout{};  // seconds, unparsed
    bool json = false;
    bool show_secrets = false;
    bool notify_only = false;
    bool bare_value = false;
    bool force = false;
    bool no_verify = false;
    bool help = false;
    bool version = false;
    bool beside_secret = false;  // any word may be one

    // A word, to be named in a message: 'word', or what stands in its place when it may be a key.
    std::string Shown(std::string_view word) const;
};

// An option that takes a value.
struct VerbOption {
    std::string_view name;   // "--text"
    std::string_view value;  // what its value is called in help
    std::string_view help;
    std::optional<std::string> Invocation::*target;
    std::string_view implied{};  // its value when none stands behind "="; empty: the next argument
};

// An option that takes none.
struct VerbFlag {
    std::string_view name;  // "--show-secrets"
    std::string_view help;
    bool Invocation::*target;
};

struct Verb {
    std::string_view name;
    std::string_view arguments;
    std::string_view summary;  // one line, for the list of verbs
    std::string_view help;     // what more there is to say, with examples
    size_t min_words;
    size_t max_words;
    std::span<const VerbOption> options;
    std::span<const VerbFlag> flags;
    ExitStatus (*run)(const Invocation& invocation, Report& report);
};

std::span<const Verb> Verbs();

// What velkctl takes without a verb, as a row like theirs.
const Verb& Tool();

ExitStatus RunGet(const Invocation& invocation, Report& report);
ExitStatus RunSet(const Invocation& invocation, Report& report);
ExitStatus RunShow(const Invocation& invocation, Report& report);
ExitStatus RunList(const Invocation& invocation, Report& report);
ExitStatus RunDescribe(const Invocation& invocation, Report& report);
ExitStatus RunRestart(const Invocation& invocation, Report& report);
ExitStatus RunCall(const Invocation& invocation, Report& report);
ExitStatus RunExplain(const Invocation& invocation, Report& report);
ExitStatus RunDoctor(const Invocation& invocation, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CLI_VERBS_H_
