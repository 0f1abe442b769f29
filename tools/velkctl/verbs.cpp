// verbs.cpp - the table of what velkctl can be told to do.
#include "velkctl/verbs.h"

#include <array>
#include <limits>

#include "velkctl/terminal.h"

namespace velkctl {
namespace {

constexpr size_t kAnyNumber = std::numeric_limits<size_t>::max();

constexpr std::array<VerbOption, 2> kCallOptions{{
    {"--text", "TEXT", "data bytes as text, at most 512", &Invocation::text},
    {"--hex", "HEX", "data bytes as pairs of hex digits; blanks or colons may stand between",
     &Invocation::hex},
}};

constexpr std::array<VerbFlag, 1> kSecretFlags{{
    {"--show-secrets", "show keys, which are masked otherwise", &Invocation::show_secrets},
}};

constexpr std::array<VerbFlag, 1> kRestartFlags{{
    {"--notify-only", "eth1: tell the wireless daemon, leave the interface up",
     &Invocation::notify_only},
}};

constexpr std::array<Verb, 5> kVerbs{{
    {"get",
     "NAME... [--show-secrets]",
     "show the value of settings",
     "One name gives the bare value, several give lines of \"name = value\". Of a key only "
     "whether\n"
     "there is one is shown, ******** or none, unless --show-secrets asks for it.\n"
     "\n"
     "Examples:\n"
     "  velkctl get eth0.dns\n"
     "  velkctl get eth0.dns eth0.link-speed\n"
     "  velkctl get eth1.psk --show-secrets",
     1,
     kAnyNumber,
     {},
     kSecretFlags,
     RunGet},
    {"set",
     "NAME VALUE...",
     "change a setting",
     "The value is written as get shows it. Put -- before a value that begins with a dash.\n"
     "\n"
     "A key need not stand on the command line: - takes a line of standard input, @FILE the only\n"
     "line of a file. A key that begins with @ can be given in these ways alone.\n"
     "\n"
     "Examples:\n"
     "  velkctl set eth0.dns 192.168.0.1 192.168.0.2\n"
     "  velkctl set eth0.dns none\n"
     "  velkctl set eth1.ssid 'my network'\n"
     "  velkctl set eth1.psk @/run/keys/psk",
     1,
     kAnyNumber,
     {},
     {},
     RunSet},
    {"restart",
     "eth0|eth1 [--notify-only]",
     "bring an interface down and up again, so that changed settings take effect",
     "With a wireless adapter attached and the cable in, restarting eth0 takes more than a "
     "minute.\n"
     "\n"
     "Examples:\n"
     "  velkctl restart eth0\n"
     "  velkctl restart eth1 --notify-only",
     1,
     1,
     {},
     kRestartFlags,
     RunRestart},
    {"list",
     "",
     "name all settings, what can be done with them and what they are",
     "Example:\n"
     "  velkctl list",
     0,
     0,
     {},
     {},
     RunList},
    {"call", "get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX] [--show-secrets]",
     "run a command of the library as it stands",
     "ID is the decimal number of the command, INTERFACE the name as it is sent, empty when left\n"
     "out. Nothing is checked before the call. Prints the result and, for a get, the data bytes\n"
     "up to the last one that is not zero; those of a key are masked.\n"
     "\n"
     "Examples:\n"
     "  velkctl call get 108 eth0\n"
     "  velkctl call set 108 eth0 --text 192.168.0.1\n"
     "  velkctl call set 108 eth0 --hex 31:30:2e:30:2e:30:2e:31",
     2, 3, kCallOptions, kSecretFlags, RunCall},
}};

}  // namespace

std::span<const Verb> Verbs() {
    return kVerbs;
}

std::string Invocation::Shown(std::string_view word) const {
    return Quoted(beside_secret ? kMask : word);
}

}  // namespace velkctl
