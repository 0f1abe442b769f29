// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Changes that are made as one and taken back as one.
#include "velkctl/changes/apply.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::ApplyPlan;
using velkctl::ApplyResult;
using velkctl::BeginFailure;
using velkctl::ChangeSet;
using velkctl::Device;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::Problem;
using velkctl::Report;

constexpr char kInterfaces[] = "/etc/network/interfaces";

// Notes the calls in their order. One of them fails.
class NotingRecord final : public velkctl::ChangeRecord {
  public:
    explicit NotingRecord(std::string failing = "") : failing_(std::move(failing)) {}

    std::optional<BeginFailure> Begin(const ChangeSet& steps,
                                      const std::vector<std::string>& restarts,
                                      const Device& /*device*/) override {
        const auto problem =
            Note("begin " + std::to_string(steps.size()) + " " + std::to_string(restarts.size()));
        return problem ? std::optional(BeginFailure{*problem, ExitStatus::kLocked}) : std::nullopt;
    }
    void StepMade() override { (void)Note("step"); }
    std::optional<Problem> Flush() override { return Note("flush"); }
    std::optional<Problem> Finish() override { return Note("finish"); }
    ExitStatus TakeBack(const Device& /*device*/, Report& /*report*/) override {
        (void)Note("take back");
        return ExitStatus::kFailed;
    }
    void FinishTakeBack() override { (void)Note("finish take back"); }

    std::vector<std::string> calls;

  private:
    std::optional<Problem> Note(const std::string& call) {
        calls.push_back(call);
        return call.starts_with(failing_) && !failing_.empty() ? std::optional(Problem{call})
                                                               : std::nullopt;
    }

    std::string failing_;
};

class ApplyTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfaces,
                  "iface eth0 inet static\naddress 192.168.0.10\nnetmask 255.255.255.0\n"
                  "gateway 192.168.0.1\niface eth1 inet dhcp\n");
    }
    ApplyPlan Plan(const std::vector<std::pair<std::string, std::string>>& wanted) {
        ChangeSet changes;
        for (const auto& [name, value] : wanted) {
            const velkctl::Setting setting = *FindSetting(name);
            changes.push_back({setting, setting.row->kind->Parse({&value, 1}).data});
        }
        return MakePlan(changes, {.is_automatic = false}, device);
    }
    ApplyResult Run(const ApplyPlan& plan, velkctl::ChangeRecord& record) {
        testing::internal::CaptureStderr();
        ApplyResult result = Apply(plan, record, {}, device, report);
        error = testing::internal::GetCapturedStderr();
        return result;
    }

    Report report{Report::Form::kText};
    const Device device{{}, report};
    std::string error;
};

TEST_F(ApplyTest, MakesTheStepsBetweenTheStatesOfItsRecord) {
    NotingRecord record;
    const ApplyResult result =
        Run(Plan({{"eth0.address", "192.168.0.11"}, {"eth0.gateway", "192.168.0.2"}}), record);
    EXPECT_EQ(result.status, ExitStatus::kDone) << error;
    EXPECT_FALSE(result.is_taken_back);
    EXPECT_THAT(record.calls, ElementsAre("begin 2 0", "step", "step", "flush", "finish"));
    EXPECT_EQ(ReadFile(kInterfaces),
              "iface eth0 inet static\n\taddress 192.168.0.11\nnetmask 255.255.255.0\n"
              "\tgateway 192.168.0.2\niface eth1 inet dhcp\n");
}

TEST_F(ApplyTest, ChangesNothingWithoutARecord) {
    NotingRecord record("begin");
    const std::string before = ReadFile(kInterfaces);
    EXPECT_EQ(Run(Plan({{"eth0.address", "192.168.0.11"}}), record).status, ExitStatus::kLocked);
    EXPECT_THAT(record.calls, ElementsAre("begin 1 0"));
    EXPECT_EQ(ReadFile(kInterfaces), before);
    EXPECT_EQ(error, "velkctl: begin 1 0\n");
}

TEST_F(ApplyTest, TakesBackAfterEachStepThatFails) {
    const ApplyPlan plan = Plan({{"eth0.address", "192.168.0.11"}, {"ntp", "on"}});
    NotingRecord of_step;
    const ApplyResult result = Run(plan, of_step);
    EXPECT_EQ(result.status, ExitStatus::kFailed) << "there is no crontab";
    EXPECT_TRUE(result.is_taken_back);
    EXPECT_THAT(of_step.calls,
                ElementsAre("begin 2 0", "step", "step", "take back", "finish take back"));

    NotingRecord of_flush("flush");
    EXPECT_TRUE(Run(Plan({{"eth0.address", "192.168.0.12"}}), of_flush).is_taken_back);
    EXPECT_THAT(of_flush.calls,
                ElementsAre("begin 1 0", "step", "flush", "take back", "finish take back"));

    NotingRecord of_end("finish");
    EXPECT_TRUE(Run(Plan({{"eth0.address", "192.168.0.13"}}), of_end).is_taken_back);
    EXPECT_THAT(of_end.calls, ElementsAre("begin 1 0", "step", "flush", "finish", "take back",
                                          "finish take back"));
}

TEST_F(ApplyTest, RestartsAndTakesBackAnInterfaceThatIsNotUp) {
    ApplyPlan plan = Plan({{"eth0.gateway", "192.168.0.2"}});
    plan.restarts = {"eth1"};
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    NotingRecord record;
    const ApplyResult result = Run(plan, record);
    EXPECT_EQ(result.status, ExitStatus::kFailed);
    ASSERT_EQ(result.restarts.size(), 1U) << error;
    EXPECT_TRUE(result.restarts[0].state.is_null()) << "the library has refused the restart";
    EXPECT_EQ(record.calls.back(), "finish take back");
}

// Another program sets the first value while the second one is set.
class ForeignSet final : public velkctl::ChangeRecord {
  public:
    std::optional<BeginFailure> Begin(const ChangeSet&, const std::vector<std::string>&,
                                      const Device&) override {
        return std::nullopt;
    }
    void StepMade() override {}
    std::optional<Problem> Flush() override {
        WriteFile(kInterfaces, "iface eth0 inet static\naddress 192.168.0.99\n");
        return std::nullopt;
    }
    std::optional<Problem> Finish() override { return std::nullopt; }
    ExitStatus TakeBack(const Device&, Report&) override { return ExitStatus::kFailed; }
    void FinishTakeBack() override {}
};

TEST_F(ApplyTest, ComparesAllValuesAtTheEnd) {
    ForeignSet record;
    EXPECT_TRUE(Run(Plan({{"eth0.address", "192.168.0.11"}}), record).is_taken_back);
    EXPECT_EQ(error,
              "velkctl: eth0.address: does not have its value any more\n"
              "  a later step or another program has changed it\n");
}

// ---- Values that a step switches
// -----------------------------------------------------------------
TEST_F(ApplyTest, SetsAValueAgainThatAnEarlierStepHasSwitched) {
    WriteFile("/etc/dhclient.conf",
              "interface \"eth1\" {\nrequest subnet-mask, domain-name-servers;\n}\n"
              "request subnet-mask;\n");
    const ApplyPlan plan = Plan({{"eth1.method", "static"}, {"eth1.dhcp-dns", "on"}});
    ASSERT_EQ(plan.changes.size(), 1U);
    ASSERT_EQ(plan.beside.size(), 1U);
    NotingRecord record;
    (void)Run(plan, record);
    EXPECT_THAT(record.calls, testing::Contains("step").Times(2));
}

}  // namespace
