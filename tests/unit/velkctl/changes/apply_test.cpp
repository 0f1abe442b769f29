// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Changes that are made as one and taken back as one.
#include "velkctl/changes/apply.h"

#include <chrono>
#include <csignal>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/time_limits.h"

namespace {

using testing::ElementsAre;
using testkit::Call;
using testkit::ReadFile;
using testkit::WriteFile;
using velkctl::Answer;
using velkctl::ApplyPlan;
using velkctl::ApplyResult;
using velkctl::BeginFailure;
using velkctl::ChangeSet;
using velkctl::Device;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::Problem;
using velkctl::Report;
using velkctl::StopSignals;

constexpr char kInterfaces[] = "/etc/network/interfaces";

velkctl::Data DataOf(std::string_view text) {
    velkctl::Data data{};
    text.copy(data.data(), data.size());
    return data;
}

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
    void FinishTakeBack(bool are_up) override {
        (void)Note(are_up ? "finish take back" : "leave stuck");
    }

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
        const StopSignals signals;
        ApplyResult result = Apply(plan, record, limits, signals, report);
        error = testing::internal::GetCapturedStderr();
        if (signals.Pending() != 0) {
            int signal = 0;
            (void)sigwait(&signals.signals(), &signal);  // it would end the tests
        }
        return result;
    }

    velkctl::TimeLimits limits;
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

// ---- Taking back -------------------------------------------------------------------------------

// A signal comes during the first step.
class InterruptedRecord final : public velkctl::ChangeRecord {
  public:
    std::optional<BeginFailure> Begin(const ChangeSet&, const std::vector<std::string>&,
                                      const Device&) override {
        return std::nullopt;
    }
    void StepMade() override {
        ++steps;
        (void)raise(SIGTERM);
    }
    std::optional<Problem> Flush() override { return std::nullopt; }
    std::optional<Problem> Finish() override { return std::nullopt; }
    ExitStatus TakeBack(const Device& with, Report&) override {
        const Answer answer = with.Set(*FindSetting("eth0.address"), DataOf("192.168.0.10"));
        return answer.ok() ? ExitStatus::kFailed : ExitStatus::kPartlyBack;
    }
    void FinishTakeBack(bool /*are_up*/) override {}

    int steps = 0;
};

TEST_F(ApplyTest, TakesBackAfterASignal) {
    InterruptedRecord record;
    const ApplyResult result =
        Run(Plan({{"eth0.address", "192.168.0.11"}, {"eth0.gateway", "192.168.0.2"}}), record);
    EXPECT_EQ(record.steps, 1) << "the second step is left out";
    EXPECT_TRUE(result.is_taken_back);
    EXPECT_EQ(result.status, ExitStatus::kFailed) << "the signal ends no set of the taking back";
    EXPECT_EQ(error, "velkctl: note: interrupted; the old state is being put back\n");
    EXPECT_NE(ReadFile(kInterfaces).find("192.168.0.10"), std::string::npos);
}

// The command is in a process group of its own: Ctrl-C does not reach it.
TEST_F(ApplyTest, EndsTheCommandThatConfirmsAfterASignal) {
    ApplyPlan plan = Plan({{"eth0.address", "192.168.0.11"}});
    plan.confirm_if = "kill -TERM $PPID; sleep 20";
    plan.confirm_seconds = 60;
    NotingRecord record;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(Run(plan, record).is_taken_back);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
    EXPECT_EQ(error, "velkctl: note: interrupted; the old state is being put back\n");
}

// Each tool of a restart takes longer than the limit.
TEST_F(ApplyTest, RestartsAgainWithoutTheTimeLimit) {
    ApplyPlan plan;  // a set would need tools, too
    plan.restarts = {"eth0"};
    limits.timeout_seconds = 1;
    libc().ScriptAlways(Call::kSystem, testkit::Return(0));
    libc().OnCall(Call::kSystem, [](const testkit::Event&) {
        (void)usleep(1500 * 1000);
        WriteFile("/tmp/finished", "");
    });
    NotingRecord record;
    const ApplyResult result = Run(plan, record);
    EXPECT_EQ(result.status, ExitStatus::kFailed) << "it has no address before the change";
    EXPECT_NE(error.find("no answer after 1 s"), std::string::npos) << error;
    EXPECT_TRUE(testkit::Exists("/tmp/finished")) << "by a tool of the second restart";
}

TEST_F(ApplyTest, NamesAnInterfaceThatItCannotRestartAgain) {
    ApplyPlan plan = Plan({{"eth0.gateway", "192.168.0.2"}});
    plan.restarts = {"eth1"};
    WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    NotingRecord record;
    const ApplyResult result = Run(plan, record);
    EXPECT_EQ(result.status, ExitStatus::kPartlyBack);
    ASSERT_EQ(result.restarts.size(), 1U) << error;
    EXPECT_TRUE(result.restarts[0].state.is_null()) << "the library has refused the restart";
    EXPECT_EQ(record.calls.back(), "leave stuck");
    EXPECT_NE(error.find("velkctl: eth1: could not be restarted after the change was taken back\n"),
              std::string::npos)
        << error;
    EXPECT_NE(error.find("  fix: 'velkctl recover' tries again\n"), std::string::npos) << error;
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
    void FinishTakeBack(bool /*are_up*/) override {}
};

// Another program sets the value after the record has begun.
class EarlyForeignSet final : public velkctl::ChangeRecord {
  public:
    std::optional<BeginFailure> Begin(const ChangeSet&, const std::vector<std::string>&,
                                      const Device&) override {
        WriteFile(kInterfaces, "iface eth0 inet static\naddress 192.168.0.99\n");
        return std::nullopt;
    }
    void StepMade() override {}
    std::optional<Problem> Flush() override { return std::nullopt; }
    std::optional<Problem> Finish() override { return std::nullopt; }
    ExitStatus TakeBack(const Device&, Report&) override { return ExitStatus::kPartlyBack; }
    void FinishTakeBack(bool /*are_up*/) override {}
};

TEST_F(ApplyTest, ReplacesNoValueThatAnotherProgramHasSetSinceItBegan) {
    EarlyForeignSet record;
    EXPECT_TRUE(Run(Plan({{"eth0.address", "192.168.0.11"}}), record).is_taken_back);
    EXPECT_EQ(error,
              "velkctl: eth0.address: not set\n"
              "  another program has set it since this change began\n");
    EXPECT_EQ(ReadFile(kInterfaces), "iface eth0 inet static\naddress 192.168.0.99\n");
}

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
