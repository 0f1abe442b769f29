// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// verbs.cpp - the table of velkctl's verbs, with the rules of each.
#include "velkctl/cli/verbs.h"

#include <array>
#include <limits>

#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr size_t kAnyNumber = std::numeric_limits<size_t>::max();

constexpr VerbOption kWait{"--wait", "",
                           "try again for 30 s while settings are locked; or --wait=N",
                           &Invocation::wait, "30"};
constexpr VerbOption kTimeout{"--timeout", "SECONDS", "stop if no answer comes within SECONDS",
                              &Invocation::timeout};
constexpr VerbFlag kJson{"--json", "print one JSON document", &Invocation::json};
constexpr VerbFlag kQuiet{"--quiet", "print only values and problems", &Invocation::quiet};
constexpr VerbFlag kVerbose{"--verbose", "print also the output of tools", &Invocation::verbose};
constexpr VerbFlag kShowSecrets{"--show-secrets", "show keys instead of asterisks",
                                &Invocation::show_secrets};

constexpr VerbFlag kNoPager{"--no-pager", "do not show a long output page by page",
                            &Invocation::no_pager};

constexpr VerbFlag kDryRun{"--dry-run", "show the changes, make them only in a private copy",
                           &Invocation::dry_run};

constexpr std::array kReadOptions{kTimeout};
constexpr std::array kChangeOptions{kWait, kTimeout};
constexpr VerbOption kRestart{"--restart", "WHICH",
                              "the interfaces to restart: auto, never, eth0 or eth0,eth1",
                              &Invocation::restart};
constexpr VerbOption kOnly{"--only", "NAMES", "only these settings, with commas between the names",
                           &Invocation::only};

constexpr std::array<VerbOption, 5> kApplyOptions{{
    {"--confirm-within", "SECONDS", "put the change back unless confirmed in time",
     &Invocation::confirm_within},
    {"--confirm-if", "COMMAND", "put the change back unless COMMAND succeeds",
     &Invocation::confirm_if},
    kRestart,
    kWait,
    kTimeout,
}};
constexpr std::array kImportOptions{kOnly, kRestart, kWait, kTimeout};
constexpr std::array kDiffOptions{kOnly, kTimeout};
constexpr std::array<VerbOption, 2> kMetricsOptions{{
    {"--output", "FILE", "write FILE at once, in place of an older one", &Invocation::output},
    kTimeout,
}};
constexpr std::array<VerbOption, 3> kSelftestOptions{{
    {"--root", "DIR", "try the files of an image in DIR, not those of the device",
     &Invocation::root},
    kWait,
    kTimeout,
}};
constexpr std::array<VerbOption, 4> kCallOptions{{
    {"--text", "TEXT", "data bytes as text, at most 512; or - or @FILE", &Invocation::text},
    {"--hex", "HEX", "data bytes as pairs of hex digits; or - or @FILE", &Invocation::hex},
    kWait,
    kTimeout,
}};

constexpr std::array<VerbFlag, 4> kToolFlags{{
    {"--version", "show the version", &Invocation::version},
    kJson,
    kQuiet,
    kVerbose,
}};
constexpr std::array kJsonFlags{kJson, kQuiet, kVerbose};
constexpr std::array kImportFlags{kJson, kQuiet, kVerbose, kDryRun};
constexpr std::array<VerbFlag, 6> kApplyFlags{{
    kJson,
    kQuiet,
    kVerbose,
    kDryRun,
    {"--check", "only check the values; nothing is tried or changed", &Invocation::check},
    {"--ask", "ask at the terminal if the change is to be kept", &Invocation::ask},
}};
constexpr std::array kCallFlags{kJson, kQuiet, kVerbose, kShowSecrets, kDryRun};
constexpr std::array kShowFlags{kJson, kQuiet, kVerbose, kShowSecrets, kNoPager};
constexpr std::array kListFlags{kJson, kQuiet, kVerbose, kNoPager};
constexpr std::array<VerbFlag, 5> kGetFlags{{
    kJson,
    kQuiet,
    kVerbose,
    kShowSecrets,
    {"--value", "print only the values, one per line, empty if none", &Invocation::bare_value},
}};
constexpr std::array<VerbFlag, 8> kSetFlags{{
    kJson,
    kQuiet,
    kVerbose,
    {"--force", "set the value even if it is not valid", &Invocation::force},
    {"--no-verify", "do not read the value back", &Invocation::no_verify},
    {"--no-journal", "keep no record; undo cannot take the set back", &Invocation::no_journal},
    kDryRun,
    {"--trace", "show the changes of files and the library's steps", &Invocation::trace},
}};
constexpr std::array<VerbFlag, 4> kUndoFlags{{
    kJson,
    kQuiet,
    kVerbose,
    {"--force", "also replace values that were set since", &Invocation::force},
}};
constexpr std::array<VerbFlag, 6> kRecoverFlags{{
    kJson,
    kQuiet,
    kVerbose,
    {"--boot", "at the start of the device, before networking", &Invocation::boot},
    {"--force", "also replace values that were set since", &Invocation::force},
    {"--keep", "close the changes and keep the present values", &Invocation::keep},
}};
constexpr std::array<VerbFlag, 4> kExportFlags{{
    kJson,
    kQuiet,
    kVerbose,
    {"--include-secrets", "write keys, too; keep such a document private",
     &Invocation::include_secrets},
}};
constexpr std::array<VerbFlag, 5> kRestartFlags{{
    kJson,
    kQuiet,
    kVerbose,
    {"--notify-only", "eth1: notify the wireless daemon only; eth1 stays up",
     &Invocation::notify_only},
    kDryRun,
}};

constexpr std::array<Verb, 24> kVerbs{{
    {"get",
     "NAME... [OPTION...]",
     "show the value of settings",
     "One name prints the bare value, several names print a table like show. A key\n"
     "(eth1.psk and the WEP keys) is shown as ********, or none if it is not set,\n"
     "unless --show-secrets is given.\n"
     "\n"
     "An interface selects all of its settings, a pattern in quotes all that match it.\n"
     "A setting of only one interface can be named without it.\n"
     "\n"
     "In a value, \\xff is a byte that is not text. \\x5c is a backslash before text\n"
     "that looks like such a byte.\n"
     "\n"
     "Examples:\n"
     "  velkctl get eth0.dns\n"
     "  velkctl get eth0.dns eth0.link-speed\n"
     "  velkctl get eth0\n"
     "  velkctl get 'eth*.address'\n"
     "  velkctl get --value eth0.address eth0.netmask\n"
     "  velkctl get eth1.psk --show-secrets",
     {.least = 1, .most = kAnyNumber},
     kReadOptions,
     kGetFlags,
     RunGet,
     CheckWordsOfGet},
    {"set",
     "NAME VALUE...|NAME=VALUE... [OPTION...]",
     "change settings",
     "Several settings are written as NAME=VALUE. All values are checked first, also\n"
     "against each other; if one is not valid, none is set. A failure stops the run;\n"
     "velkctl then names the settings that are set.\n"
     "\n"
     "Write the value as get shows it. A list may have commas, and an address the\n"
     "length of its netmask after it. Put -- before a value that begins with a dash.\n"
     "'velkctl describe NAME' lists the values of a setting. '' clears a text, none\n"
     "clears any other setting that can be empty. In a text, \\xff is the byte of that\n"
     "number, and \\x5cxff the four characters.\n"
     "\n"
     "velkctl checks the value first and reads it back after the set. Exit status 6:\n"
     "the library reported success, but the device does not hold the value.\n"
     "'velkctl undo' takes a set back.\n"
     "\n"
     "Other users can see the command line. For a key, such as eth1.psk, - reads a\n"
     "line of standard input and @FILE the only line of a file; without a value,\n"
     "velkctl asks for it at a terminal. A key that begins with @ needs one of these\n"
     "ways.\n"
     "\n"
     "Examples:\n"
     "  velkctl set eth0.address 192.168.0.10\n"
     "  velkctl set eth0.address=192.168.0.10/24 eth0.gateway=192.168.0.1\n"
     "  velkctl set eth0.dns 192.168.0.1 192.168.0.2\n"
     "  velkctl set web-update weekly sunday 08:30\n"
     "  velkctl set eth1.ssid 'my network' --wait\n"
     "  velkctl set eth1.psk @/run/keys/psk",
     {.least = 1, .most = kAnyNumber, .takes_value = true, .second_is_number = true},
     kChangeOptions,
     kSetFlags,
     RunSet,
     CheckWordsOfSet},
    {"show",
     "[NAME...] [OPTION...]",
     "show all settings, or those of an interface",
     "NAME is an interface, a setting, or a pattern in quotes.\n"
     "\n"
     "A setting that cannot be read is shown with the reason. At a terminal, a long\n"
     "output goes through the program in PAGER, or through less.\n"
     "\n"
     "Examples:\n"
     "  velkctl show\n"
     "  velkctl show eth0 --json\n"
     "  velkctl show 'eth*.dns' ntp-server",
     {.most = kAnyNumber},
     kReadOptions,
     kShowFlags,
     RunShow,
     CheckWordsOfShow},
    {"restart",
     "eth0|eth1 [OPTION...]",
     "bring an interface down and up to apply its settings",
     "Prints the address that the interface has then. Exit status 6: it is not up, or\n"
     "has no address.\n"
     "\n"
     "Restarting eth0 takes more than a minute if a wireless adapter is attached and\n"
     "the cable is in.\n"
     "\n"
     "Examples:\n"
     "  velkctl restart eth0\n"
     "  velkctl restart eth1 --notify-only",
     {.least = 1, .most = 1, .first_is_interface = true},
     kChangeOptions,
     kRestartFlags,
     RunRestart},
    {"apply",
     "FILE|-|NAME=VALUE... [OPTION...]",
     "change settings as one change, and restart",
     "FILE is a JSON document as export writes it, - reads it from standard input. All\n"
     "values are checked first; if one is not valid, nothing is changed. Only settings\n"
     "with another value on the device are set. Then the interfaces that need it are\n"
     "restarted, and all values are compared with the device once more.\n"
     "\n"
     "If a step fails, all files and values are put back, and the interfaces are\n"
     "restarted again. If the method leaves dhcp, the DHCP client is ended first.\n"
     "\n"
     "With method dhcp, the address, netmask and gateway in a document are skipped.\n"
     "\n"
     "With --confirm-within, the change waits: without 'velkctl confirm' within 10 to\n"
     "86400 seconds it is put back, also if the connection is lost or the device is\n"
     "restarted. --ask waits for a key instead. --confirm-if runs a command of the\n"
     "shell: status 0 confirms the change, any other one puts it back. Both have 300\n"
     "seconds unless --confirm-within is given.\n"
     "\n"
     "Examples:\n"
     "  velkctl apply eth0.method=static eth0.address=192.168.0.10/24\n"
     "  velkctl apply eth0.address=192.168.7.10 --confirm-within 300\n"
     "  velkctl apply network.json --restart never\n"
     "  velkctl apply - --json <network.json",
     {.least = 1, .most = kAnyNumber, .takes_value = true},
     kApplyOptions,
     kApplyFlags,
     RunApply},
    {"export",
     "[OPTION...]",
     "print all settings as one JSON document",
     "apply, import and diff take the document. Its settings are those that can be\n"
     "changed, its facts all other values. Keys are left out unless --include-secrets\n"
     "is given. Settings that cannot be read are left out; that is an error unless the\n"
     "adapter is missing or the cable is in.\n"
     "\n"
     "Example:\n"
     "  velkctl export >network.json",
     {},
     kReadOptions,
     kExportFlags,
     RunExport},
    {"import",
     "FILE|- [OPTION...]",
     "apply a document that export has written",
     "Like apply, and can select settings. Settings that the document does not have,\n"
     "such as keys, are left alone.\n"
     "\n"
     "Examples:\n"
     "  velkctl import network.json\n"
     "  velkctl import network.json --only eth0,ntp-server\n"
     "  velkctl import - --only 'eth*.dns' <network.json",
     {.least = 1, .most = 1},
     kImportOptions,
     kImportFlags,
     RunImport},
    {"diff",
     "FILE|- [FILE] [OPTION...]",
     "compare a document with the device or with another one",
     "Prints the settings that differ, with the value of the first document and the\n"
     "other one. The exit status is 0 if there are none, else 6. Of the device, only\n"
     "settings in the document are compared. Keys are shown as ********.\n"
     "\n"
     "Examples:\n"
     "  velkctl diff network.json\n"
     "  velkctl diff before.json after.json --only eth0",
     {.least = 1, .most = 2},
     kDiffOptions,
     kJsonFlags,
     RunDiff},
    {"list",
     "[eth0|eth1] [OPTION...]",
     "list all settings, or those of an interface",
     "Examples:\n"
     "  velkctl list\n"
     "  velkctl list eth0",
     {.most = 1, .first_is_interface = true},
     {},
     kListFlags,
     RunList,
     nullptr,
     false},
    {"describe",
     "NAME|ID [OPTION...]",
     "describe a setting and its values",
     "A name without its interface, or the id of a command, selects the setting of\n"
     "every interface.\n"
     "\n"
     "Examples:\n"
     "  velkctl describe eth0.gateway\n"
     "  velkctl describe 108",
     {.least = 1, .most = 1},
     {},
     kJsonFlags,
     RunDescribe,
     nullptr,
     false},
    {"explain",
     "RESULT|STATUS [OPTION...]",
     "explain a result of the library or an exit status",
     "A result is 0, a negative number or a name, with or without LIB_VELK_. An exit\n"
     "status of velkctl is a number from 0 to 9. 0 is both.\n"
     "\n"
     "Examples:\n"
     "  velkctl explain -3\n"
     "  velkctl explain LIB_VELK_LOCKED\n"
     "  velkctl explain 6",
     {.least = 1, .most = 1},
     {},
     kJsonFlags,
     RunExplain,
     nullptr,
     false},
    {"status",
     "[eth0|eth1] [OPTION...]",
     "compare the configuration with the running state",
     "Shows link, DHCP client, address and gateway of each interface, the wireless\n"
     "adapter and daemon, and who holds the lock. The exit status is 0 if all is as\n"
     "configured, else 1. eth1 is not compared while the cable is in.\n"
     "\n"
     "Examples:\n"
     "  velkctl status\n"
     "  velkctl status eth0 --json",
     {.most = 1, .first_is_interface = true},
     kReadOptions,
     kJsonFlags,
     RunStatus},
    {"doctor",
     "[OPTION...]",
     "look for problems with files, tools and daemons",
     "Changes nothing. The exit status is 0 if there is no problem, else 1.\n"
     "\n"
     "Example:\n"
     "  velkctl doctor",
     {},
     {},
     kJsonFlags,
     RunDoctor},
    {"metrics",
     "[OPTION...]",
     "print the state of the device for a monitoring agent",
     "Prints the findings of doctor and status in the Prometheus text format. With\n"
     "--output, a reader finds the whole old FILE or the whole new one. Changes\n"
     "nothing else. The exit status is 0 even if there are problems: they are among\n"
     "the numbers.\n"
     "\n"
     "Examples:\n"
     "  velkctl metrics\n"
     "  velkctl metrics --output /run/metrics/velk.prom",
     {},
     kMetricsOptions,
     kJsonFlags,
     RunMetrics},
    {"selftest",
     "[OPTION...]",
     "try every command, without changing the device",
     "Reads every setting, and sets each in a private copy of the device's files,\n"
     "where it is read back. A command that needs the adapter, or the cable out, is\n"
     "not tested without it. Each may take ten minutes; see --timeout. The exit\n"
     "status is 0 if none fails, else 1.\n"
     "\n"
     "With --root, only settings in files are tested, with the files below DIR.\n"
     "\n"
     "Examples:\n"
     "  velkctl selftest\n"
     "  velkctl selftest --root build/rootfs",
     {},
     kSelftestOptions,
     kJsonFlags,
     RunSelftest},
    {"capture",
     "FILE|- [OPTION...]",
     "write all that the library reads on this device to a file",
     "FILE is an uncompressed tar archive of the device's files, the outputs of its\n"
     "tools and the values of all settings. - writes it to standard output. Each\n"
     "character of a secret is replaced by 0. 'velk-sandbox --rootfs FILE' simulates\n"
     "the device.\n"
     "\n"
     "Items that cannot be read are named; the exit status is 0 even so.\n"
     "\n"
     "Example:\n"
     "  velkctl capture device.tar",
     {.least = 1, .most = 1},
     kReadOptions,
     kJsonFlags,
     RunCapture},
    {"confirm",
     "[ID] [OPTION...]",
     "keep the change that waits for its confirmation",
     "'velkctl apply --confirm-within' makes such a change. Without a confirmation it\n"
     "is put back. Only root and the user who has made the change may confirm it.\n"
     "\n"
     "A change that is already confirmed is no failure. Exit status 1: nothing waits,\n"
     "or the change was put back before.\n"
     "\n"
     "Examples:\n"
     "  velkctl confirm\n"
     "  velkctl confirm k7f2",
     {.most = 1},
     kChangeOptions,
     kJsonFlags,
     RunConfirm},
    {"extend",
     "SECONDS [ID] [OPTION...]",
     "give a change more time for its confirmation",
     "Adds the seconds, 10 to 86400, to the time that is left.\n"
     "\n"
     "Examples:\n"
     "  velkctl extend 600\n"
     "  velkctl extend 600 k7f2",
     {.least = 1, .most = 2},
     kChangeOptions,
     kJsonFlags,
     RunExtend},
    {"revert",
     "[ID] [OPTION...]",
     "put back the change that waits for its confirmation",
     "Puts files and values back, and restarts the interfaces again. A change that is\n"
     "already put back is no failure. 'velkctl undo' takes back a confirmed change.\n"
     "Exit status 9: something could not be put back.\n"
     "\n"
     "Examples:\n"
     "  velkctl revert\n"
     "  velkctl revert k7f2",
     {.most = 1},
     kChangeOptions,
     kJsonFlags,
     RunRevert},
    {"pending",
     "[OPTION...]",
     "show the change that waits for its confirmation",
     "Example:\n"
     "  velkctl pending",
     {},
     kReadOptions,
     kJsonFlags,
     RunPending},
    {"undo",
     "[ID] [OPTION...]",
     "take back a change of settings",
     "Takes back the last change, or the one with the ID that history shows. An undo\n"
     "is a change too: undo of an undo makes the change again.\n"
     "\n"
     "Files get their former bytes. If another program has written a file\n"
     "since, only the settings get their old values. If one of them was set since,\n"
     "nothing is changed: status 1. --force replaces it. Exit status 9: only a part\n"
     "was put back.\n"
     "\n"
     "Examples:\n"
     "  velkctl undo\n"
     "  velkctl undo k7f2",
     {.most = 1},
     kChangeOptions,
     kUndoFlags,
     RunUndo},
    {"history",
     "[OPTION...]",
     "list the changes that undo can take back",
     "The last change comes first. velkctl keeps 16 changes, or 256 KB of them. Keys\n"
     "are shown as ********.\n"
     "\n"
     "Example:\n"
     "  velkctl history",
     {},
     {},
     kListFlags,
     RunHistory},
    {"recover",
     "[OPTION...]",
     "take back changes that were interrupted",
     "A change is interrupted if velkctl was killed, or the power failed. --boot is\n"
     "for a script that runs before networking: it takes back the changes from before\n"
     "the start, and leaves the values of the wireless daemon to a later recover.\n"
     "\n"
     "A value that was set since stays. If a later change has set it, that is noted.\n"
     "Otherwise it is named, and the change is stuck: exit status 9. --force replaces\n"
     "the value, --keep closes the change without taking it back. A file or setting\n"
     "that was put back once is not touched again.\n"
     "\n"
     "A change that waits for its confirmation is left alone until a restart.\n"
     "\n"
     "Examples:\n"
     "  velkctl recover\n"
     "  velkctl recover --boot\n"
     "  velkctl recover --force",
     {},
     kChangeOptions,
     kRecoverFlags,
     RunRecover,
     nullptr,
     false},
    {"call",
     "get|set|restart ID [INTERFACE] [OPTION...]",
     "run a command of the library without checks",
     "ID is the decimal number of the command. INTERFACE is sent as given, empty by\n"
     "default. Prints the result and, for a get, the data bytes up to the last one\n"
     "that is not zero. Keys are masked.\n"
     "\n"
     "Other users can see the command line. As TEXT or HEX, - reads a line of standard\n"
     "input and @FILE the only line of a file. A text that is - or begins with @ needs\n"
     "one of these ways, or --hex.\n"
     "\n"
     "Examples:\n"
     "  velkctl call get 108 eth0\n"
     "  velkctl call set 108 eth0 --text 192.168.0.1\n"
     "  velkctl call set 108 eth0 --hex 31:30:2e:30:2e:30:2e:31\n"
     "  velkctl call set 314 eth1 --text @/run/keys/psk",
     {.least = 2, .most = 3, .second_is_number = true},
     kCallOptions,
     kCallFlags,
     RunCall},
}};

constexpr Verb kTool{
    "",
    "VERB [ARGUMENT...]",
    "Read and change the network settings of the device.",
    "Examples:\n"
    "  velkctl show                             all values\n"
    "  velkctl get eth0.address                 one value\n"
    "  velkctl set eth0.address 192.168.0.10    change it in the configuration\n"
    "  velkctl restart eth0                     apply the changes\n"
    "  velkctl doctor                           find the cause of a failure\n"
    "\n"
    "'velkctl VERB --help' describes a verb, with examples. 'velkctl list' lists the\n"
    "settings.",
    {},
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
    return QuotedUnlessKey(word, beside_secret);
}

}  // namespace velkctl
