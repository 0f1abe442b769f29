#include "velkctl/report/report.h"

#include <string>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using velkctl::ExitStatus;
using velkctl::Problem;
using velkctl::Report;

struct Said {
    std::string out;
    std::string err;
};

template <typename Run>
Said What(Report::Form form, Run run) {
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
    report.Complain(Problem{"eth0.dns: could not be read", "eth0.dns", -1});
    return report.Refuse("no such thing");
}

TEST(Report, GoesOutAsTextLineByLine) {
    const Said said = What(Report::Form::kText, SayAll);
    EXPECT_EQ(said.out, "eth0.dns = 10.0.0.1\n");
    EXPECT_EQ(
        said.err,
        "velkctl: it took long\nvelkctl: eth0.dns: could not be read\nvelkctl: no such thing\n");
}

TEST(Report, GoesOutAsOneJsonDocumentWithItsErrors) {
    const Said said = What(Report::Form::kJson, SayAll);
    EXPECT_EQ(said.err, "");
    EXPECT_EQ(said.out, R"({
  "schema": 1,
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
      "setting": "eth0.dns",
      "result": {
        "code": -1,
        "name": "LIB_VELK_FAILURE",
        "words": "file, socket, time-out or unreadable value"
      }
    },
    {
      "message": "no such thing",
      "setting": null,
      "result": null
    }
  ]
}
)");
}

TEST(Report, AnEmptyDocumentIsWholeToo) {
    const Said said = What(Report::Form::kJson, [](Report&) { return ExitStatus::kDone; });
    EXPECT_EQ(said.out,
              "{\n  \"schema\": 1,\n  \"verb\": null,\n  \"status\": 0,\n  \"notes\": [],\n"
              "  \"errors\": []\n}\n");
}

TEST(Report, BytesThatAreNoTextDoNotBreakTheDocument) {
    const Said said = What(Report::Form::kJson, [](Report& report) {
        report.Complain("\xff");
        return ExitStatus::kFailed;
    });
    EXPECT_NE(said.out.find("\"message\": \"\\ufffd\""), std::string::npos) << said.out;
}

TEST(Report, TheDocumentIsAscii) {
    const Said said = What(Report::Form::kJson, [](Report& report) {
        report.Complain("caf\xc3\xa9");
        return ExitStatus::kFailed;
    });
    EXPECT_NE(said.out.find("\"message\": \"caf\\u00e9\""), std::string::npos) << said.out;
}

}  // namespace
