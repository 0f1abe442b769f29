// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A set or apply of velkctl and its tools are killed at each system call. Then velkctl recover
// runs: every file is as before the change, or as after it.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/changes.h"
#include "fault/kit/requests.h"
#include "fault/kit/scene.h"
#include "fault/kit/tracer.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/journal_folder.h"

namespace fault {
namespace {

using velkctl::ChangeSet;
using velkctl::Report;
using velkctl::SettingChange;

struct Kills {
    int all = 0;
    int old_files = 0;
    int new_files = 0;
    int missed = 0;  // the run was over before its kill
};

using Work = int (*)(Device& tools, const ChangeSet& changes, const std::string& path);

int Recover(Device& tools, const std::string& path) {
    tools.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    Report report(Report::Form::kText);
    return static_cast<int>(RunRecover({}, report));
}

// The note of the last address is in /tmp, and lost at a start.
Files FilesToKeep() {
    Files files = ReadTargets();
    files.erase(testkit::kOldAddressFile);
    return files;
}

// Returns each file that is not as before.
std::string Differences(const Files& files, const Files& before) {
    std::string text;
    for (const auto& [path, bytes] : files) {
        if (bytes != before.at(path)) {
            text.append(path).append(":\n").append(bytes.value_or("(missing)\n"));
        }
    }
    return text;
}

class KilledChange : public testkit::DeviceTest {
  protected:
    void KillEverywhere(const Group& requests, bool at_every_call) {
        Kills kills;
        for (const Request& request : requests) {
            if (const auto change = ChangeOf(request.request); change && !HasFailure()) {
                KillChange(MakeSet, {*change}, at_every_call, kills);
            }
        }
        EXPECT_LE(kills.missed, 1 + kills.all / 20);
        printf("| %s | %d | %d | %d |\n", requests.front().name.c_str(), kills.all, kills.old_files,
               kills.new_files);
        (void)fflush(stdout);  // a child would print it once more
    }

    void KillChange(Work work, const ChangeSet& change, bool at_every_call, Kills& kills) {
        testkit::EmptyDevice();
        Device device{Scene{}};
        const Files before = FilesToKeep();
        const TracedRun whole = RunTraced([&] { return work(device, change, path_); });
        const Files after = FilesToKeep();
        for (size_t at = 1; at <= whole.calls_that_change.size(); ++at) {
            if (at == 1 || at_every_call || whole.calls_that_change[at - 2]) {
                SCOPED_TRACE("killed at system call " + std::to_string(at));
                KillOnce(work, change, before, after, at, kills);
            }
        }
    }

    void KillOnce(Work work, const ChangeSet& change, const Files& before, const Files& after,
                  size_t at, Kills& kills) {
        testkit::EmptyDevice();
        Device device{Scene{}};
        const TracedRun run = RunTraced([&] { return work(device, change, path_); }, at);
        kills.missed += run.was_cut ? 0 : 1;
        kills.all += run.was_cut ? 1 : 0;
        EXPECT_EQ(RunTraced([&] { return Recover(device, path_); }).result, 0);
        const Files files = FilesToKeep();
        kills.old_files += files == before ? 1 : 0;
        kills.new_files += files == after && files != before ? 1 : 0;
        EXPECT_TRUE(files == before || files == after) << Differences(files, before);
        for (const velkctl::StoredEntry& entry : velkctl::ReadJournal().entries) {
            EXPECT_TRUE(entry.decoded.entry.is_closed());
        }
    }

  private:
    const std::string path_ = PathWithHarmlessSudo();
};

class KilledChangeTest : public KilledChange, public testing::WithParamInterface<Group> {};

TEST_F(KilledChange, LeavesTheAddressOldOrNewAfterRecover) {
    KillEverywhere(
        {{"set 104 eth0", testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3")}},
        /*at_every_call=*/false);
}

// It takes long, as the next one: only scripts/test --thorough runs them.
TEST_F(KilledChange, DISABLED_LeavesAnApplyDoneOrUndoneAfterRecover) {
    const auto change = [](const char* name, std::string_view text) {
        SettingChange made{*velkctl::FindSetting(name), {}};
        text.copy(made.value.data(), made.value.size());
        return made;
    };
    Kills kills;
    KillChange(MakeApply,
               {change("eth0.address", "10.1.2.3"), change("eth0.gateway", "10.1.2.4"),
                change("eth0.dns", "10.1.2.5")},
               /*at_every_call=*/false, kills);
    EXPECT_EQ(kills.all, kills.old_files + kills.new_files);
    printf("| apply of 3 settings | %d | %d | %d |\n", kills.all, kills.old_files, kills.new_files);
    (void)fflush(stdout);
}

TEST_P(KilledChangeTest, DISABLED_LeavesOldOrNewFilesAfterRecover) {
    KillEverywhere(GetParam(), /*at_every_call=*/false);
}

// The groups of settings in files.
std::vector<Group> FileRequests() {
    std::vector<Group> groups = SetRequests();
    std::erase_if(groups, [](const Group& group) { return !ChangeOf(group.front().request); });
    return groups;
}

INSTANTIATE_TEST_SUITE_P(All, KilledChangeTest, testing::ValuesIn(FileRequests()),
                         [](const auto& group) { return TestName(group.param); });

}  // namespace
}  // namespace fault
