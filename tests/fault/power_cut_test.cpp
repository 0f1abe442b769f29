// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The power fails at each system call of each set and its tools, and comes back.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

#include <gmock/gmock.h>

#include "fault/kit/requests.h"
#include "fault/kit/tracer.h"
#include "fault/kit/trial.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kInterfacesFile;
using testkit::kResolverFile;

// The tools that put an edited file in place, and the library itself where it writes in place.
const std::set<std::string> kCopiers{"sh\n", "cat\n"};

struct Cuts {
    int all = 0;
    int before = 0;
    int after = 0;
    int between = 0;  // one of two steps is done
    int short_file = 0;
    int copy_left = 0;
    int in_pieces = 0;  // short files that are not empty
    int missed = 0;     // the run was over before its cut
};

// Runs the set with the real shell and tools, within the traced child.
int ExecuteWithRealTools(Device& device, const _velk_request& request, const std::string& path) {
    device.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    _velk_request response{};
    return execute_velk_command(&request, &response);
}

// The real tools must make the same files as the fake ones.
void CheckUncut(const Reference& reference, const TracedRun& run, const Files& after) {
    EXPECT_EQ(run.result, reference.outcome.result);
    EXPECT_TRUE(after == reference.outcome.files) << "the real tools make other files";
}

// The texts that each file may have at a moment at which nothing writes to it.
class WholeTexts {
  public:
    WholeTexts(const Reference& reference, const Files& after)
        : before_(reference.before), after_(after), states_(reference.states) {
        for (const auto& [path, text] : after) {
            states_[path].insert(text);
            if (text != "" && reference.before.at(path) != "") {
                states_[path].erase("");  // seen between the opening and the writing
            }
        }
    }

    bool Hold(const std::string& path, const std::optional<std::string>& text) const {
        return states_.at(path).contains(text);
    }
    // True for the text that an edit, or the first of two edits, makes of the file.
    bool HoldAsNew(const std::string& path, const std::string& text) const {
        return Hold(path, text) && (text == after_.at(path) || text != before_.at(path));
    }
    bool BeginWith(const std::string& path, const std::optional<std::string>& text) const {
        return text && std::ranges::any_of(states_.at(path), [&](const auto& whole) {
                   return whole && whole->starts_with(*text);
               });
    }

  private:
    const Files before_;
    const Files after_;
    std::map<std::string, std::set<std::optional<std::string>>> states_;
};

class PowerCut : public testkit::DeviceTest {
  protected:
    enum class Moments { kThatDiffer, kAll };

    Cuts CutAll(const Group& requests, Moments moments) {
        Cuts cuts;
        std::set<std::string> courses;
        for (const Request& request : requests) {
            const Reference reference = Trial({}, request.request, start_).RunWithoutFault();
            if (courses.insert(reference.course).second) {
                CutRequest(request.request, reference, moments, cuts);
            }
            if (HasFailure()) {
                break;
            }
        }
        EXPECT_GT(cuts.all, 0);
        // The number of calls varies a little: a tool may end before or after the shell begins to
        // wait for it.
        EXPECT_LE(cuts.missed, 1 + cuts.all / 20);
        printf("| %s | %d | %d | %d | %d | %d | %d |\n", requests.front().name.c_str(), cuts.all,
               cuts.before, cuts.after, cuts.between, cuts.short_file, cuts.copy_left);
        return cuts;
    }

    Files start_;  // texts instead of the device's own

  private:
    void CutRequest(const _velk_request& request, const Reference& reference, Moments moments,
                    Cuts& cuts) {
        Device device({}, start_);
        const TracedRun whole =
            RunTraced([&] { return ExecuteWithRealTools(device, request, path_); });
        const Files after = ReadTargets();
        CheckUncut(reference, whole, after);
        const WholeTexts texts(reference, after);
        next_files_.clear();
        for (const Moment& at :
             moments == Moments::kAll ? whole.Moments() : whole.MomentsThatDiffer()) {
            SCOPED_TRACE("cut " + TextOf(at));
            CutOnce(request, reference, after, texts, at, cuts);
        }
    }

    void CutOnce(const _velk_request& request, const Reference& reference, const Files& after,
                 const WholeTexts& texts, const Moment& at, Cuts& cuts) {
        Device device({}, start_);
        const TracedRun run =
            RunTraced([&] { return ExecuteWithRealTools(device, request, path_); }, at);
        if (!run.was_cut) {
            ++cuts.missed;
            return;
        }
        ++cuts.all;
        const Files files = ReadTargets();
        Count(reference, after, files, cuts);
        CheckFiles(texts, files, run, cuts);
        CheckTheNextCall(request, reference, files, device);
    }

    static void Count(const Reference& reference, const Files& after, const Files& files,
                      Cuts& cuts) {
        if (files == reference.before) {
            ++cuts.before;
        } else if (files == after) {
            ++cuts.after;
        } else {
            ++cuts.between;  // or short: subtracted below
        }
        const std::vector<std::string> left = RemainingFiles();
        cuts.copy_left += std::ranges::any_of(
            left, [](const std::string& path) { return path.starts_with("/var/tmp/"); });
    }

    static void CheckFiles(const WholeTexts& texts, const Files& files, const TracedRun& run,
                           Cuts& cuts) {
        for (const auto& [path, text] : files) {
            if (texts.Hold(path, text)) {
                continue;
            }
            EXPECT_TRUE(texts.BeginWith(path, text))
                << path << " holds a text that it never contained";
            const bool is_copied = std::ranges::any_of(
                run.programs, [](const std::string& name) { return kCopiers.contains(name); });
            EXPECT_TRUE(is_copied || path == kResolverFile)
                << path << " is short while nothing copies it";
            if (is_copied && path != kResolverFile) {
                CheckFinishingByHand(texts, path, *text);
            }
            ++cuts.short_file;
            cuts.in_pieces += text->empty() ? 0 : 1;
            --cuts.between;
        }
    }

    // Checks that the edit copy is complete, and that cat(1) finishes the interrupted edit with it.
    // Then cuts the file again.
    static void CheckFinishingByHand(const WholeTexts& texts, const std::string& path,
                                     const std::string& text) {
        const std::string copy = testkit::CopyOf(path);
        const testkit::Unrecorded ours;
        EXPECT_EQ(system(("cat " + copy + " > " + path).c_str()), 0);
        EXPECT_TRUE(texts.HoldAsNew(path, testkit::ReadFile(path))) << copy << " is not whole";
        testkit::WriteFile(path, text);
    }

    // The remains of the cut call must not disturb the next call: it goes as on a device with the
    // same files.
    void CheckTheNextCall(const _velk_request& request, const Reference& reference,
                          const Files& files, Device& device) {
        device.daemon().ServePending();  // later than this: killed_query_test.cpp
        EXPECT_EQ(Execute(request), reference.outcome.result);
        const Files next = ReadTargets();
        auto found = next_files_.find(files);
        if (found == next_files_.end()) {
            found = next_files_.emplace(files, Trial({}, request, files).RunAgain().files).first;
        }
        EXPECT_TRUE(next == found->second) << "the next call makes other files";
        EXPECT_TRUE(testkit::IsLockFree());
    }

    const std::string path_ = PathWithHarmlessSudo();
    std::map<Files, Files> next_files_;
};

class PowerCutTest : public PowerCut, public testing::WithParamInterface<Group> {};

TEST_P(PowerCutTest, ACutLeavesCompleteFilesAndBlocksNothing) {
    CutAll(GetParam(), Moments::kThatDiffer);
}

// Cuts also at the moments that change nothing on the device. It takes long, and only scripts/test
// --thorough runs it.
TEST_P(PowerCutTest, DISABLED_ACutLeavesTheSameAtEverySystemCall) {
    CutAll(GetParam(), Moments::kAll);
}

// More than cat(1) copies at once.
TEST_F(PowerCut, ACutMayLeaveTheFirstPiecesOfALongFile) {
    const std::string comment = "#" + std::string(20 * 1024, '-') + "\n";
    std::string& text = start_[kInterfacesFile].emplace();
    for (int count = 0; count < 20; ++count) {
        text += comment;
    }
    text += "auto eth0\niface eth0 inet static\n\taddress 192.168.0.10\n";
    const Request request{"set 104 eth0, 400 KB",
                          testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3")};
    const Cuts cuts = CutAll({request}, Moments::kThatDiffer);
    EXPECT_GT(cuts.in_pieces, 0);
    EXPECT_GT(cuts.short_file, cuts.in_pieces) << "it is empty first";
}

INSTANTIATE_TEST_SUITE_P(All, PowerCutTest, testing::ValuesIn(SetRequests()),
                         [](const auto& group) { return TestName(group.param); });

}  // namespace
}  // namespace fault
