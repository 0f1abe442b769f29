// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/cli/command_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/report/output.h"

namespace {

using velkctl::ExitStatus;
using velkctl::Report;

class CommandLine : public testing::Test {
  protected:
    ExitStatus Run(const std::vector<std::string>& arguments) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Report report(velkctl::RequestedForm(arguments));
        const ExitStatus status = velkctl::RunCommandLine(arguments, report);
        report.Finish(status);
        (void)velkctl::FinishPrinting();
        output = testing::internal::GetCapturedStdout();
        error = testing::internal::GetCapturedStderr();
        return status;
    }
    void Refuses(const std::vector<std::string>& arguments, const std::string& message) {
        EXPECT_EQ(Run(arguments), ExitStatus::kInvalid);
        EXPECT_EQ(output, "");
        EXPECT_EQ(error, "velkctl: " + message + "\n");
    }

    std::string output;
    std::string error;
};

TEST_F(CommandLine, ShowsTheHelpOfAVerb) {
    const std::string help =
        "velkctl restart: bring an interface down and up to apply its settings\n"
        "Usage: velkctl restart eth0|eth1 [OPTION...]\n"
        "\n"
        "Options:\n"
        "  -h,--help           show this help\n"
        "  --wait              try again for 30 s while settings are locked; or --wait=N\n"
        "  --timeout SECONDS   stop if no answer comes within SECONDS\n"
        "  --json              print one JSON document\n"
        "  --quiet             print only values and problems\n"
        "  --verbose           print also the output of tools\n"
        "  --notify-only       eth1: notify the wireless daemon only; eth1 stays up\n"
        "  --dry-run           show the changes, make them only in a private copy\n"
        "\n"
        "Prints the address that the interface has then. Exit status 6: it is not up, or\n"
        "has no address.\n"
        "\n"
        "Restarting eth0 takes more than a minute if a wireless adapter is attached and\n"
        "the cable is in.\n"
        "\n"
        "Examples:\n"
        "  velkctl restart eth0\n"
        "  velkctl restart eth1 --notify-only\n";
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"restart", "--help"},
             {"restart", "-h"},
             {"help", "restart"},
             {"restart", "--bogus", "--timeout", "1", "--timeout", "2", "--help"}}) {
        EXPECT_EQ(Run(arguments), ExitStatus::kDone);
        EXPECT_EQ(output, help);
        EXPECT_EQ(error, "");
    }
}

TEST_F(CommandLine, ShowsItsOwnHelpAtAnyPlace) {
    EXPECT_EQ(Run({"--help"}), ExitStatus::kDone);
    const std::string help = output;
    EXPECT_EQ(help.substr(0, help.find("Verbs:")),
              "Read and change the network settings of the device.\n"
              "Usage: velkctl VERB [ARGUMENT...]\n"
              "\n"
              "Options:\n"
              "  -h,--help           show this help\n"
              "  --version           show the version\n"
              "  --json              print one JSON document\n"
              "  --quiet             print only values and problems\n"
              "  --verbose           print also the output of tools\n"
              "\n");
    EXPECT_EQ(help.substr(help.find("  7 ")),
              "  7         no answer before the timeout\n"
              "  8         another change waits for its confirmation\n"
              "  9         a change was taken back only in part\n"
              "\n"
              "Examples:\n"
              "  velkctl show                             all values\n"
              "  velkctl get eth0.address                 one value\n"
              "  velkctl set eth0.address 192.168.0.10    change it in the configuration\n"
              "  velkctl restart eth0                     apply the changes\n"
              "  velkctl doctor                           find the cause of a failure\n"
              "\n"
              "'velkctl VERB --help' describes a verb, with examples. 'velkctl list' lists the\n"
              "settings.\n");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"-h"}, {"help"}, {"--bogus", "--help", "get"}}) {
        EXPECT_EQ(Run(arguments), ExitStatus::kDone);
        EXPECT_EQ(output, help);
    }
}

TEST_F(CommandLine, HasHelpAndVersionAsDocuments) {
    EXPECT_EQ(Run({"--version", "--json"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find("\"version\"")),
              "{\n  \"schema\": 3,\n  \"verb\": null,\n  \"status\": 0,\n  ");
    EXPECT_EQ(Run({"get", "--json", "-h"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find(':', output.find("\"help\""))),
              "{\n  \"schema\": 3,\n  \"verb\": null,\n  \"status\": 0,\n  \"help\"");
}

TEST_F(CommandLine, TakesJsonBeforeTheVerbToo) {
    EXPECT_EQ(Run({"--json", "--json", "describe", "ntp"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find("\"status\"")),
              "{\n  \"schema\": 3,\n  \"verb\": \"describe\",\n  ");
}

TEST_F(CommandLine, RefusesOptionsOfVerbsBeforeThem) {
    Refuses({"--timeout", "5", "get", "ntp"},
            "'--timeout' is an option of a verb; give it after the verb");
    Refuses({"--text=secret", "call", "get", "108"},
            "'--text' is an option of a verb; give it after the verb");
}

TEST_F(CommandLine, RefusesAnAbbreviatedOption) {
    Refuses({"--jso"}, "unknown option '--jso'; did you mean --json?");
    Refuses({"--vers"}, "unknown option '--vers'; did you mean --version?");
    Refuses({"-json"}, "unknown option '-json'; did you mean --json?");
    Refuses({"-5"}, "unknown option '-5'; 'velkctl --help' lists the options");
    Refuses({"get", "ntp", "--jso"}, "get: unknown option '--jso'; did you mean --json?");
    Refuses({"call", "get", "108", "--tex", "x"},
            "call: unknown option '--tex'; did you mean --text or --hex?");
}

TEST_F(CommandLine, RefusesAValueOfAnyOfItsFlags) {
    Refuses({"--help=no"}, "option '--help' takes no value; leave it out");
    Refuses({"-hello"}, "unknown option '-hello'; 'velkctl --help' lists the options");
    Refuses({"set", "location", "-help"}, "set: unknown option '-help'; did you mean --help?");
    Refuses({"--bogus", "--version=1"}, "option '--version' takes no value; leave it out");
    Refuses({"get", "ntp", "--json=no"}, "get: option '--json' takes no value; leave it out");
}

TEST_F(CommandLine, RefusesUnknownVerbs) {
    const std::string verbs = "; 'velkctl --help' lists the verbs";
    Refuses({}, "no verb given" + verbs);
    for (const char* word : {"", "-", "--", "x=secret"}) {
        const std::string shown = word == std::string("x=secret") ? "x" : word;
        Refuses({word, "get", "ntp"}, "unknown verb '" + shown + "'" + verbs);
    }
}

}  // namespace
