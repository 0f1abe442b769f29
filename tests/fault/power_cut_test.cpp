// The power goes at each system call of each set, its tools' included, and comes back.
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
    int between = 0;  // of two steps, one is done
    int short_file = 0;
    int copy_left = 0;
    int in_pieces = 0;  // of those short, neither empty nor whole
    int missed = 0;     // the run was over before its cut
};

// The set with the real shell and tools, within the followed child.
int ExecuteWithRealTools(Device& device, const _velk_request& request, const std::string& path) {
    device.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    _velk_request response{};
    return execute_velk_command(&request, &response);
}

// The real tools made what their stand-ins make.
void CheckUncut(const Reference& reference, const TracedRun& run, const Files& after) {
    EXPECT_EQ(run.result, reference.outcome.result);
    EXPECT_TRUE(after == reference.outcome.files) << "the real tools make other files";
}

// What may stand in each file at any moment at which nothing writes to it.
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
    // What an edit makes of the file, or the first of two.
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
        // Few: the number of calls is not always the same, for a tool may end before the shell
        // begins to wait for it, or after.
        EXPECT_LE(cuts.missed, 1 + cuts.all / 20);
        printf("| %s | %d | %d | %d | %d | %d | %d |\n", requests.front().name.c_str(), cuts.all,
               cuts.before, cuts.after, cuts.between, cuts.short_file, cuts.copy_left);
        return cuts;
    }

    Files start_;  // texts in the place of the device's own

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
        for (size_t at = 1; at <= whole.calls_that_change.size(); ++at) {
            const bool differs = at == 1 || whole.calls_that_change[at - 2];
            if (differs || moments == Moments::kAll) {
                SCOPED_TRACE("cut at system call " + std::to_string(at));
                CutOnce(request, reference, after, texts, at, cuts);
            }
        }
    }

    void CutOnce(const _velk_request& request, const Reference& reference, const Files& after,
                 const WholeTexts& texts, size_t at, Cuts& cuts) {
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
            ++cuts.between;  // or short, which is counted back
        }
        const std::vector<std::string> left = Leftovers();
        cuts.copy_left += std::ranges::any_of(
            left, [](const std::string& path) { return path.starts_with("/var/tmp/"); });
    }

    static void CheckFiles(const WholeTexts& texts, const Files& files, const TracedRun& run,
                           Cuts& cuts) {
        for (const auto& [path, text] : files) {
            if (texts.Hold(path, text)) {
                continue;
            }
            EXPECT_TRUE(texts.BeginWith(path, text)) << path << " holds what it never held";
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

    // The edit copy is whole, and cat(1) finishes with it what the cut has interrupted. The file is
    // short again afterwards.
    static void CheckFinishingByHand(const WholeTexts& texts, const std::string& path,
                                     const std::string& text) {
        const std::string copy = testkit::CopyOf(path);
        const testkit::Unrecorded ours;
        EXPECT_EQ(system(("cat " + copy + " > " + path).c_str()), 0);
        EXPECT_TRUE(texts.HoldAsNew(path, testkit::ReadFile(path))) << copy << " is not whole";
        testkit::WriteFile(path, text);
    }

    // Nothing of the cut call stands in its way, and it goes as on a device with the same files.
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

TEST_P(PowerCutTest, ACutLeavesWholeFilesAndNothingThatBlocks) {
    CutAll(GetParam(), Moments::kThatDiffer);
}

// Also at the moments after which the device looks the same as before. For scripts/test --thorough:
// it takes long.
TEST_P(PowerCutTest, DISABLED_ACutLeavesTheSameAtEverySystemCall) {
    CutAll(GetParam(), Moments::kAll);
}

// More than cat(1) copies at once.
TEST_F(PowerCut, ACutMayLeaveTheFirstPiecesOfALongFile) {
    const std::string remark = "#" + std::string(20 * 1024, '-') + "\n";
    std::string& text = start_[kInterfacesFile].emplace();
    for (int count = 0; count < 20; ++count) {
        text += remark;
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
