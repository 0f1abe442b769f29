// verbs.cpp - the table of what velkctl can be told to do.
#include "velkctl/verbs.h"

#include <array>
#include <limits>

namespace velkctl {
namespace {

constexpr size_t kAnyNumber = std::numeric_limits<size_t>::max();

constexpr std::array<VerbOption, 2> kCallOptions{{
    {"--text", "TEXT", "data bytes as text, at most 512", &Invocation::text},
    {"--hex", "HEX", "data bytes as pairs of hex digits; blanks or colons may stand between",
     &Invocation::hex},
}};

constexpr std::array<Verb, 4> kVerbs{{
    {"get",
     "NAME...",
     "show the value of settings",
     "One name gives the bare value, several give lines of \"name = value\".\n"
     "\n"
     "Examples:\n"
     "  velkctl get eth0.dns\n"
     "  velkctl get eth0.dns eth1.dns",
     1,
     kAnyNumber,
     {},
     RunGet},
    {"set",
     "NAME VALUE...",
     "change a setting",
     "The value is written as get shows it. Put -- before a value that begins with a dash.\n"
     "\n"
     "Examples:\n"
     "  velkctl set eth0.dns 192.168.0.1 192.168.0.2\n"
     "  velkctl set eth0.dns none",
     1,
     kAnyNumber,
     {},
     RunSet},
    {"list",
     "",
     "name all settings, what can be done with them and what they are",
     "Example:\n"
     "  velkctl list",
     0,
     0,
     {},
     RunList},
    {"call", "get|set|restart ID [INTERFACE] [--text TEXT | --hex HEX]",
     "run a command of the library as it stands",
     "ID is the decimal number of the command, INTERFACE the name as it is sent, empty when left\n"
     "out. Nothing is checked before the call. Prints the result and, for a get, the data bytes\n"
     "up to the last one that is not zero.\n"
     "\n"
     "Examples:\n"
     "  velkctl call get 108 eth0\n"
     "  velkctl call set 108 eth0 --text 192.168.0.1\n"
     "  velkctl call set 108 eth0 --hex 31:30:2e:30:2e:30:2e:31",
     2, 3, kCallOptions, RunCall},
}};

}  // namespace

std::span<const Verb> Verbs() {
    return kVerbs;
}

}  // namespace velkctl
