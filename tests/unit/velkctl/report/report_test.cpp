// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/report/report.h"

#include <string>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using velkctl::ExitStatus;
using velkctl::MessageLines;
using velkctl::OneLine;
using velkctl::Problem;
using velkctl::Report;

struct Said {
    std::string out;
    std::string err;
};

template <typename Run>
Said OutputOf(Report::Form form, Run run) {
    Report report(form);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    report.Finish(run(report));
    fflush(stdout);
    Said said;
    said.out = testing::internal::GetCapturedStdout();
    said.err = testing::internal::GetCapturedStderr();
    return said;
}

ExitStatus SayAll(Report& report) {
    report.set_verb("get");
    report.Text("eth0.dns = 10.0.0.1\n");
    report.Member("settings", {1, 2});
    report.Note("it took long");
    report.Complain(Problem{"eth0.dns: could not be read", "eth0.dns", -1, "likely cause: no file",
                            "make one", "/etc/resolv.dnsmasq.conf", 3});
    return report.Refuse("no such thing");
}

TEST(Report, GoesOutAsTextLineByLine) {
    const Said said = OutputOf(Report::Form::kText, SayAll);
    EXPECT_EQ(said.out, "eth0.dns = 10.0.0.1\n");
    EXPECT_EQ(said.err,
              "velkctl: note: it took long\n"
              "velkctl: eth0.dns: could not be read\n"
              "  likely cause: no file\n"
              "  fix: make one\n"
              "  result: LIB_VELK_FAILURE (-1)\n"
              "velkctl: no such thing\n");
}

TEST(Report, GoesOutAsOneJsonDocumentWithItsErrors) {
    const Said said = OutputOf(Report::Form::kJson, SayAll);
    EXPECT_EQ(said.err, "");
    EXPECT_EQ(said.out, R"({
  "schema": 3,
  "verb": "get",
  "status": 2,
  "settings": [
    1,
    2
  ],
  "notes": [
    "it took long"
  ],
  "errors": [
    {
      "message": "eth0.dns: could not be read",
      "detail": "likely cause: no file",
      "cause": {
        "file": "/etc/resolv.dnsmasq.conf",
        "line": 3
      },
      "remedy": "make one",
      "setting": "eth0.dns",
      "result": {
        "code": -1,
        "name": "LIB_VELK_FAILURE",
        "description": "file, socket, time-out or unreadable value"
      }
    },
    {
      "message": "no such thing",
      "detail": null,
      "cause": null,
      "remedy": null,
      "setting": null,
      "result": null
    }
  ]
}
)");
}

TEST(Report, BreaksALongTextAtSemicolonsAndBeforeBut) {
    const std::string reason(40, 'a');
    EXPECT_EQ(velkctl::WrappedAt80(reason + "; " + reason, 2), reason + "\n  " + reason);
    EXPECT_EQ(velkctl::WrappedAt80(reason + "; " + std::string(36, 'b'), 2),
              reason + "; " + std::string(36, 'b'));
    EXPECT_EQ(velkctl::WrappedAt80(reason + ", but " + reason, 2), reason + ",\n  but " + reason);
    EXPECT_EQ(MessageLines({.message = reason + "; give " + reason}),
              reason + "\n  fix: give " + reason);
}

TEST(Report, BreaksNoQuotationAndNoFix) {
    const std::string quoted =
        "the interface's line 'request routers; # " + std::string(50, 'a') + "'";
    EXPECT_EQ(velkctl::WrappedAt80(quoted, 2), quoted);
    EXPECT_EQ(velkctl::WrappedAt80(quoted + "; it is off", 2), quoted + "\n  it is off");
    const std::string fix = "fix: rm " + std::string(80, 'a') + "; true";
    EXPECT_EQ(velkctl::WrappedAt80(fix, 2), fix);
}

TEST(Report, AnEmptyDocumentIsCompleteToo) {
    const Said said = OutputOf(Report::Form::kJson, [](Report&) { return ExitStatus::kDone; });
    EXPECT_EQ(said.out,
              "{\n  \"schema\": 3,\n  \"verb\": null,\n  \"status\": 0,\n  \"notes\": [],\n"
              "  \"errors\": []\n}\n");
}

TEST(Report, BytesThatAreNoTextDoNotBreakTheDocument) {
    const Said said = OutputOf(Report::Form::kJson, [](Report& report) {
        report.Complain("\xff");
        return ExitStatus::kFailed;
    });
    EXPECT_NE(said.out.find("\"message\": \"\\ufffd\""), std::string::npos) << said.out;
}

TEST(Report, LongMessagesAreBrokenAtTheirSemicolons) {
    const std::string name(40, 'n');
    EXPECT_EQ(MessageLines({.message = name + ": is not valid; give on or off"}),
              name + ": is not valid; give on or off");
    EXPECT_EQ(
        MessageLines({.message = name + ": is not valid; no; give on or off, or another one"}),
        name + ": is not valid\n  no\n  fix: give on or off, or another one");
    EXPECT_EQ(MessageLines({.message = name + ": is no valid value of it at all; give on or off"}),
              name + ": is no valid value of it at all\n  fix: give on or off");
    EXPECT_EQ(MessageLines({.message = "a", .detail = name + "; " + name + "; b"}),
              "a\n  " + name + "\n  " + name + "; b");
}

TEST(Report, AdviceAtTheEndOfAMessageIsTheRemedy) {
    const auto parts = [](const std::string& message) {
        const nlohmann::ordered_json error = velkctl::ProblemInJson({.message = message});
        return error["message"].dump() + error["detail"].dump() + error["remedy"].dump();
    };
    EXPECT_EQ(parts("a: 'b' is not valid; give c"), R"("a: 'b' is not valid"null"give c")");
    EXPECT_EQ(parts("a; b; did you mean c?"), R"("a""b""did you mean c?")");
    EXPECT_EQ(parts("a: '; give b' is not valid"), R"("a: '; give b' is not valid"nullnull)");
    EXPECT_EQ(parts("a; fix: b; c"), R"("a"null"b; c")");
    EXPECT_EQ(parts("a, but b; give c; or d"), R"("a, but b"null"give c; or d")");
    EXPECT_EQ(MessageLines({.message = std::string(80, 'a') + "; usage: b"}),
              std::string(80, 'a') + "\n  usage: b");
}

TEST(Report, AFixIsNotBrokenAtItsSemicolons) {
    const std::string fix = "fix: if true; then " + std::string(80, 'x') + "; fi";
    EXPECT_EQ(MessageLines({.message = "a; b; " + fix}), "a\n  b\n  " + fix);
}

TEST(Report, AProblemOnOneLineHasAllItsParts) {
    EXPECT_EQ(OneLine({"a", "", -3, "b", "c"}), "a; b; fix: c (LIB_VELK_LOCKED, -3)");
    EXPECT_EQ(OneLine({"a"}), "a");
}

TEST(Report, TheDocumentIsAscii) {
    const Said said = OutputOf(Report::Form::kJson, [](Report& report) {
        report.Complain("caf\xc3\xa9");
        return ExitStatus::kFailed;
    });
    EXPECT_NE(said.out.find("\"message\": \"caf\\u00e9\""), std::string::npos) << said.out;
}

ExitStatus SayAllWith(Report::Detail detail, Report& report) {
    report.set_detail(detail);
    report.KeepToolOutput({"ntp: earlier"});
    report.KeepToolOutput({"ntp: rm: first", "ntp: rm: second"});
    report.Inform("eth0: 10.0.0.1\n");
    return SayAll(report);
}

TEST(ReportTest, ToolOutputComesBeforeTheFirstProblem) {
    const Said said = OutputOf(Report::Form::kText, [](Report& report) {
        return SayAllWith(Report::Detail::kUsual, report);
    });
    EXPECT_TRUE(said.out.starts_with("eth0: 10.0.0.1\n")) << said.out;
    EXPECT_TRUE(
        said.err.starts_with("velkctl: note: it took long\nvelkctl: ntp: rm: first\n"
                             "velkctl: ntp: rm: second\nvelkctl: eth0.dns: could not be read\n"))
        << said.err;
}

TEST(ReportTest, QuietOmitsAllButValuesAndProblems) {
    const Said said = OutputOf(Report::Form::kText, [](Report& report) {
        EXPECT_TRUE(report.shows_progress());
        const ExitStatus status = SayAllWith(Report::Detail::kQuiet, report);
        EXPECT_FALSE(report.shows_progress());
        return status;
    });
    EXPECT_TRUE(said.out.starts_with("eth0.dns = 10.0.0.1\n")) << said.out;
    EXPECT_TRUE(said.err.starts_with("velkctl: eth0.dns: could not be read\n")) << said.err;
}

TEST(ReportTest, QuietKeepsTheNotesOfADocument) {
    const Said said = OutputOf(Report::Form::kJson, [](Report& report) {
        return SayAllWith(Report::Detail::kQuiet, report);
    });
    EXPECT_NE(said.out.find("it took long"), std::string::npos) << said.out;
    EXPECT_EQ(said.err, "");
}

TEST(ReportTest, VerboseShowsToolOutputAtOnce) {
    const Said said = OutputOf(Report::Form::kText, [](Report& report) {
        return SayAllWith(Report::Detail::kVerbose, report);
    });
    EXPECT_TRUE(
        said.err.starts_with("velkctl: ntp: earlier\nvelkctl: ntp: rm: first\n"
                             "velkctl: ntp: rm: second\nvelkctl: note: it took long\n"))
        << said.err;
}

}  // namespace
