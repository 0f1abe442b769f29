// verbs.cpp - the table of what velkctl can be told to do.
#include "velkctl/cli/verbs.h"

#include <array>
#include <limits>

#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr size_t kAnyNumber = std::numeric_limits<size_t>::max();

constexpr VerbOption kWait{
    "--wait", "", "while another program changes settings, try again for 30 s, or --wait=SECONDS",
    &Invocation::wait, "30"};
constexpr VerbOption kTimeout{"--timeout", "SECONDS", "give up when it takes longer",
                              &Invocation::timeout};
constexpr VerbFlag kJson{"--json", "answer as one JSON document", &Invocation::json};
constexpr VerbFlag kShowSecrets{"--show-secrets", "show keys, which are masked otherwise",
                                &Invocation::show_secrets};

constexpr std::array kReadOptions{kTimeout};
constexpr std::array kChangeOptions{kWait, kTimeout};
constexpr std::array<VerbOption, 4> kCallOptions{{
    {"--text", "TEXT", "data bytes as text, at most 512; - or @FILE reads them", &Invocation::text},
    {"--hex", "HEX",
     "data bytes as pairs of hex digits, with blanks or colons between; - or @FILE reads them",
     &Invocation::hex},
    kWait,
    kTimeout,
}};

constexpr std::array<VerbFlag, 2> kToolFlags{{
    {"--version", "show the version", &Invocation::version},
    kJson,
}};
constexpr std::array kJsonFlags{kJson};
constexpr std::array kSecretFlags{kJson, kShowSecrets};
constexpr std::array<VerbFlag, 3> kGetFlags{{
    kJson,
    kShowSecrets,
    {"--value", "show the bare values, one a line; it is empty where there is none",
     &Invocation::bare_value},
}};
constexpr std::array<VerbFlag, 3> kSetFlags{{
    kJson,
    {"--force", "set a value that would be refused as nonsense, as it is", &Invocation::force},
    {"--no-verify", "do not read the value back", &Invocation::no_verify},
}};
constexpr std::array<VerbFlag, 2> kRestartFlags{{
    kJson,
    {"--notify-only", "eth1: tell the wireless daemon, leave the interface up",
     &Invocation::notify_only},
}};

constexpr std::array<Verb, 9> kVerbs{{
    {"get", "NAME... [OPTION...]", "show the value of settings",
     "One name gives the bare value, several give lines of \"name = value\". Of a key, which is\n"
     "the pre-shared key or a WEP key, only whether there is one is shown, ******** or none,\n"
     "unless --show-secrets asks for it.\n"
     "\n"
     "In a value, \\xff is a byte that is no text, and \\x5c a backslash that would look like "
     "one.\n"
     "\n"
     "Examples:\n"
     "  velkctl get eth0.dns\n"
     "  velkctl get eth0.dns eth0.link-speed\n"
     "  velkctl get --value eth0.address eth0.netmask\n"
     "  velkctl get eth1.psk --show-secrets",
     1, kAnyNumber, kReadOptions, kGetFlags, RunGet},
    {"set", "NAME VALUE... [OPTION...]", "change a setting",
     "The value is written as get shows it. Put -- before a value that begins with a dash. It is\n"
     "checked before, and read back afterwards: exit status 6 says that the library reported\n"
     "success but the device does not hold the value. 'velkctl describe NAME' says which values a\n"
     "setting takes. '' clears a text, none everything else that can be empty. In a text, \\xff "
     "is\n"
     "the byte of that number, and \\x5cxff the four characters.\n"
     "\n"
     "A key, as in eth1.psk, need not stand on the command line, where other users see it: - "
     "takes\n"
     "a line of standard input, @FILE the only line of a file, and at a terminal it is asked for\n"
     "when no value is given. A key that begins with @ can be given in these ways alone.\n"
     "\n"
     "Examples:\n"
     "  velkctl set eth0.address 192.168.0.10\n"
     "  velkctl set eth0.dns 192.168.0.1 192.168.0.2\n"
     "  velkctl set web-update weekly sunday 08:30\n"
     "  velkctl set eth1.ssid 'my network' --wait\n"
     "  velkctl set eth1.psk @/run/keys/psk",
     1, kAnyNumber, kChangeOptions, kSetFlags, RunSet},
    {"show", "[eth0|eth1] [OPTION...]", "show all settings, or those of an interface",
     "What cannot be read stands there with the reason. Colours are for terminals that can, and "
     "not\n"
     "when NO_COLOR is set.\n"
     "\n"
     "Examples:\n"
     "  velkctl show\n"
     "  velkctl show eth0 --json",
     0, 1, kReadOptions, kSecretFlags, RunShow},
    {"restart", "eth0|eth1 [OPTION...]",
     "bring an interface down and up again, so that changed settings take effect",
     "With a wireless adapter attached and the cable in, restarting eth0 takes more than a "
     "minute.\n"
     "\n"
     "Examples:\n"
     "  velkctl restart eth0\n"
     "  velkctl restart eth1 --notify-only",
     1, 1, kChangeOptions, kRestartFlags, RunRestart},
    {"list",
     "[eth0|eth1] [--json]",
     "name all settings, or those of an interface, and say what can be done with them",
     "Examples:\n"
     "  velkctl list\n"
     "  velkctl list eth0",
     0,
     1,
     {},
     kJsonFlags,
     RunList},
    {"describe",
     "NAME|ID [--json]",
     "say what a setting is",
     "A name without its interface, and the id of a command, stand for the setting of every\n"
     "interface.\n"
     "\n"
     "Examples:\n"
     "  velkctl describe eth0.gateway\n"
     "  velkctl describe 108",
     1,
     1,
     {},
     kJsonFlags,
     RunDescribe},
    {"explain",
     "RESULT|STATUS [--json]",
     "say what a result of the library or an exit status means and what to do about it",
     "A result is a negative number or a name, with or without LIB_VELK_; an exit status of\n"
     "velkctl is a number from 1 to 7. 0 is both: done.\n"
     "\n"
     "Examples:\n"
     "  velkctl explain -3\n"
     "  velkctl explain LIB_VELK_LOCKED\n"
     "  velkctl explain 6",
     1,
     1,
     {},
     kJsonFlags,
     RunExplain},
    {"doctor",
     "[--json]",
     "find problems that keep the library from working, with their fixes",
     "Changes nothing. The exit status is 0 without problems, else 1.\n"
     "\n"
     "Example:\n"
     "  velkctl doctor",
     0,
     0,
     {},
     kJsonFlags,
     RunDoctor},
    {"call", "get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX] [OPTION...]",
     "run a command of the library as it stands",
     "ID is the decimal number of the command, INTERFACE the name as it is sent, empty when left\n"
     "out. Nothing is checked before the call. Prints the result and, for a get, the data bytes\n"
     "up to the last one that is not zero; those of a key are masked.\n"
     "\n"
     "Data bytes need not stand on the command line, where other users see them: - takes a line "
     "of\n"
     "standard input, @FILE the only line of a file. Give a text that is - or begins with @ in\n"
     "these ways, or as hex digits.\n"
     "\n"
     "Examples:\n"
     "  velkctl call get 108 eth0\n"
     "  velkctl call set 108 eth0 --text 192.168.0.1\n"
     "  velkctl call set 108 eth0 --hex 31:30:2e:30:2e:30:2e:31\n"
     "  velkctl call set 314 eth1 --text @/run/keys/psk",
     2, 3, kCallOptions, kSecretFlags, RunCall},
}};

constexpr Verb kTool{
    "",
    "VERB [ARGUMENT...]",
    "Read and change the network settings of the device.",
    "'velkctl VERB --help' tells more about a verb, and has examples. 'velkctl list' names\n"
    "the settings.",
    0,
    0,
    {},
    kToolFlags,
    nullptr};

}  // namespace

std::span<const Verb> Verbs() {
    return kVerbs;
}

const Verb& Tool() {
    return kTool;
}

std::string Invocation::Shown(std::string_view word) const {
    return beside_secret ? "a word, not repeated here as it may be a key," : Quoted(word);
}

}  // namespace velkctl
