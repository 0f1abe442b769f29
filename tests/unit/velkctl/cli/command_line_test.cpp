#include "velkctl/cli/command_line.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/text/escaping.h"

namespace {

using velkctl::ExitStatus;
using velkctl::Report;

class CommandLine : public testing::Test {
  protected:
    ExitStatus Run(const std::vector<std::string>& arguments) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        Report report(velkctl::FormAskedFor(arguments));
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
        "velkctl restart: bring an interface down and up again, so that changed settings take "
        "effect\n"
        "Usage: velkctl restart eth0|eth1 [OPTION...]\n"
        "\n"
        "Options:\n"
        "  -h,--help                   show this help\n"
        "  --wait                      while another program changes settings, try again for 30 s, "
        "or --wait=SECONDS\n"
        "  --timeout SECONDS           give up when it takes longer\n"
        "  --json                      answer as one JSON document\n"
        "  --notify-only               eth1: tell the wireless daemon, leave the interface up\n"
        "\n"
        "With a wireless adapter attached and the cable in, restarting eth0 takes more than a "
        "minute.\n"
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

TEST_F(CommandLine, ShowsItsOwnHelpWhereverItIsAskedFor) {
    EXPECT_EQ(Run({"--help"}), ExitStatus::kDone);
    const std::string help = output;
    EXPECT_EQ(help.substr(0, help.find("Verbs:")),
              "Read and change the network settings of the device.\n"
              "Usage: velkctl VERB [ARGUMENT...]\n"
              "\n"
              "Options:\n"
              "  -h,--help                   show this help\n"
              "  --version                   show the version\n"
              "  --json                      answer as one JSON document\n"
              "\n");
    EXPECT_EQ(help.substr(help.find("  7 ")),
              "  7         given up because it took too long\n"
              "\n"
              "'velkctl VERB --help' tells more about a verb, and has examples. 'velkctl list' "
              "names\n"
              "the settings.\n");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"-h"}, {"help"}, {"--bogus", "--help", "get"}}) {
        EXPECT_EQ(Run(arguments), ExitStatus::kDone);
        EXPECT_EQ(output, help);
    }
}

TEST_F(CommandLine, HasHelpAndVersionAsDocuments) {
    EXPECT_EQ(Run({"--version", "--json"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find("\"version\"")),
              "{\n  \"schema\": 1,\n  \"verb\": null,\n  \"status\": 0,\n  ");
    EXPECT_EQ(Run({"get", "--json", "-h"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find(':', output.find("\"help\""))),
              "{\n  \"schema\": 1,\n  \"verb\": null,\n  \"status\": 0,\n  \"help\"");
}

TEST_F(CommandLine, TakesJsonInFrontOfTheVerbToo) {
    EXPECT_EQ(Run({"--json", "--json", "describe", "ntp"}), ExitStatus::kDone);
    EXPECT_EQ(output.substr(0, output.find("\"status\"")),
              "{\n  \"schema\": 1,\n  \"verb\": \"describe\",\n  ");
}

TEST_F(CommandLine, RefusesOptionsOfVerbsInFrontOfThem) {
    Refuses({"--timeout", "5", "get", "ntp"},
            "option '--timeout' stands in front of the verb; give it behind the verb");
    Refuses({"--text=secret", "call", "get", "108"},
            "option '--text' stands in front of the verb; give it behind the verb");
}

TEST_F(CommandLine, RefusesTheBeginningOfAnOption) {
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

TEST_F(CommandLine, RefusesWordsThatAreNoVerbs) {
    const std::string verbs =
        "get, set, show, restart, list, describe, explain, doctor, call or help ('velkctl --help' "
        "explains them)";
    Refuses({}, "no verb given; give " + verbs);
    for (const char* word : {"", "-", "--", "x=secret"}) {
        const std::string shown = word == std::string("x=secret") ? "x" : word;
        Refuses({word, "get", "ntp"}, "unknown verb '" + shown + "'; give " + verbs);
    }
}

}  // namespace
