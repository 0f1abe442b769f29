// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The configuration beside the running state, on a private device without a wireless adapter.
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/output.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using velkctl::ExitStatus;
using velkctl::Report;

class StatusVerb : public testkit::DeviceTest {
  protected:
    StatusVerb() {
        testkit::WriteFile(testkit::kSupportList, "VID=1a2b\nPID=3c4d\n");
        testkit::WriteFile(testkit::kUsbDevices, "");
    }
    ExitStatus Run(const std::vector<std::string>& words, Report::Form form = Report::Form::kText) {
        velkctl::Invocation invocation;
        invocation.words = words;
        Report report(form);
        testing::internal::CaptureStdout();
        const ExitStatus status = RunStatus(invocation, report);
        report.Finish(status);
        (void)velkctl::FinishPrinting();
        output = testing::internal::GetCapturedStdout();
        return status;
    }

    std::string output;
};

// An address of TEST-NET-1, which no interface of this machine has.
TEST_F(StatusVerb, MarksAnAddressThatTheInterfaceLacks) {
    testkit::WriteFile(testkit::kInterfacesFile,
                       "iface eth0 inet static\naddress 192.0.2.10\nnetmask 255.255.255.0\n");
    EXPECT_EQ(Run({"eth0"}), ExitStatus::kFailed);
    EXPECT_THAT(output, HasSubstr("name              configured       running\n"));
    EXPECT_THAT(output, testing::ContainsRegex("eth0.address      192.0.2.10       .* differs\n"));
    EXPECT_THAT(output, Not(HasSubstr("eth1.")));
    EXPECT_THAT(output, Not(HasSubstr("lock ")));
}

TEST_F(StatusVerb, ComparesNothingWithoutAConfiguration) {
    EXPECT_EQ(Run({}), ExitStatus::kDone);
    EXPECT_THAT(output, Not(HasSubstr("differs")));
    EXPECT_THAT(output, HasSubstr("eth1.adapter      -                none\n"
                                  "eth1.daemon       -                off\n"
                                  "eth1.use          -                not used without an "
                                  "adapter\n"));
    EXPECT_THAT(output, HasSubstr("lock              -                free\n"));
}

TEST_F(StatusVerb, HasTheStatesInADocument) {
    EXPECT_EQ(Run({"eth1"}, Report::Form::kJson), ExitStatus::kDone);
    EXPECT_THAT(output, HasSubstr(R"("name": "eth1.use",
      "configured": null,
      "running": "not used without an adapter",
      "differs": false)"));
}

}  // namespace
