// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Trials as people and programs see them.
#include "velkctl/preview/preview_report.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/preview/changed_files.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Answer;
using velkctl::EventKind;
using velkctl::ExitStatus;
using velkctl::FileImage;
using velkctl::Report;
using velkctl::ReportTrial;
using velkctl::TrialRun;
using velkctl::TrialStep;

const TrialStep kSetDns{VELK_SET, VELK_CMD_DNS, "eth0"};
const TrialStep kRestart{VELK_RESTART, VELK_CMD_RESTART, "eth0"};
const Answer kDone{LIB_VELK_SUCCESS};

FileImage File(const std::string& bytes) {
    return {.path = "/etc/resolv.dnsmasq.conf", .exists = true, .bytes = bytes};
}

struct Shown {
    ExitStatus status;
    std::string output;
    std::string error;
};

Shown Show(const TrialRun& run, const std::vector<TrialStep>& steps) {
    Report report(Report::Form::kText);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ExitStatus status = ReportTrial(run, steps, report);
    (void)fflush(stdout);
    const std::string output = testing::internal::GetCapturedStdout();
    return {status, output, testing::internal::GetCapturedStderr()};
}

TEST(PreviewReport, ShowsFilesStepsAndTime) {
    const TrialRun run{.answers = {kDone},
                       .before = {File("a\n")},
                       .after = {File("b\n")},
                       .events = {{EventKind::kLogLine, "a line"}},
                       .is_complete = true};
    const Shown shown = Show(run, {kSetDns});
    EXPECT_EQ(shown.status, ExitStatus::kDone);
    EXPECT_EQ(shown.error, "");
    EXPECT_EQ(shown.output,
              "eth0.dns: would be set\n"
              "--- /etc/resolv.dnsmasq.conf\n"
              "+++ /etc/resolv.dnsmasq.conf\n"
              "@@ -1 +1 @@\n"
              "-a\n"
              "+b\n"
              "steps of the library:\n"
              "  log       a line\n"
              "longest time: no wait; only the time to change files\n");
}

TEST(PreviewReport, ShowsTheTimeOfARestart) {
    const TrialRun run{.answers = {kDone},
                       .before = {File("")},
                       .after = {File("")},
                       .events = {{EventKind::kWait, "1"}},
                       .is_complete = true};
    EXPECT_EQ(Show(run, {kRestart}).output,
              "restart of eth0: would be done\n"
              "no file would change\n"
              "steps of the library:\n"
              "  wait      1 s\n"
              "longest time: 1 s, and the time for the interface to come up\n");
}

TEST(PreviewReport, ComplainsAboutAFailedStepWithTheOutputOfTools) {
    const TrialRun run{.answers = {{.result = LIB_VELK_FAILURE, .tool_output = {"sh: no"}}},
                       .before = {File("")},
                       .after = {File("")}};
    const Shown shown = Show(run, {{VELK_SET, 999, "eth0"}});
    EXPECT_EQ(shown.status, ExitStatus::kFailed);
    EXPECT_EQ(shown.output,
              "no file would change\nlongest time: no wait; only the time to change files\n");
    EXPECT_EQ(shown.error.substr(0, shown.error.find("fail") + 4),
              "velkctl: sh: no\nvelkctl: command 999: would fail");
}

TEST(PreviewReport, ShowsNothingElseIfTheLockIsHeld) {
    const Shown shown = Show({.answers = {{LIB_VELK_LOCKED}}}, {kSetDns});
    EXPECT_EQ(shown.status, ExitStatus::kLocked);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.error.substr(0, shown.error.find('\n')), "velkctl: eth0.dns: would fail");
}

TEST(PreviewReport, ComplainsIfNoCopyIsPossible) {
    const Shown shown = Show({.problem = velkctl::Problem{.message = "none here"}}, {kSetDns});
    EXPECT_EQ(shown.status, ExitStatus::kFailed);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.error, "velkctl: none here\n");
}

TEST(PreviewReport, NotesAFileThatThisUserCannotRead) {
    FileImage unread = File("");
    unread.error = EACCES;
    const TrialRun run{
        .answers = {kDone}, .before = {unread}, .after = {unread}, .is_complete = true};
    EXPECT_EQ(Show(run, {kSetDns}).error,
              "velkctl: note: /etc/resolv.dnsmasq.conf: this user cannot read it, so its changes "
              "are not shown\n");
    EXPECT_EQ(Show(run, {kRestart}).error, "");
}

TEST(PreviewReport, ShowsATraceLikeATrial) {
    Report report(Report::Form::kText);
    testing::internal::CaptureStdout();
    velkctl::ReportTrace({File("a\n")}, {File("a\n")}, {}, report);
    velkctl::ReportTrace({File("a\n")}, {File("")}, {{EventKind::kLogLine, "x"}}, report);
    (void)fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "no file has changed\n"
              "--- /etc/resolv.dnsmasq.conf\n"
              "+++ /etc/resolv.dnsmasq.conf\n"
              "@@ -1 +0,0 @@\n"
              "-a\n"
              "steps of the library:\n"
              "  log       x\n");
}

TEST(ChangedFiles, AreMadeChangedOrRemoved) {
    const FileImage missing{.path = "/x"};
    const FileImage empty{.path = "/x", .exists = true};
    const auto made = velkctl::ChangedFiles({missing}, {empty});
    EXPECT_EQ(TextOf(made), "/x: made\n");
    EXPECT_EQ(velkctl::InJson(made).dump(), R"([{"path":"/x","change":"made","diff":[]}])");
    EXPECT_EQ(TextOf(velkctl::ChangedFiles({empty}, {missing})), "/x: removed\n");
    EXPECT_EQ(velkctl::ChangedFiles({empty}, {empty}).size(), 0U);
}

}  // namespace
