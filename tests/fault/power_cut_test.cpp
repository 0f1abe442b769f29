// The power goes at each system call of each set, its tools' included, and comes back.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>

#include <gmock/gmock.h>

#include "fault/requests.h"
#include "fault/tracer.h"
#include "fault/trial.h"
#include "support/device_test.h"

namespace fault {
namespace {

constexpr char kResolverFile[] = "/etc/resolv.dnsmasq.conf";

// The tools that put an edited file in place, and the library itself where it writes in place.
const std::set<std::string> kCopiers{"sh\n", "cat\n"};

struct Cuts {
    int all = 0;
    int before = 0;
    int after = 0;
    int between = 0;  // of two steps, one is done
    int short_file = 0;
    int copy_left = 0;
};

// The set with the real shell and tools, within the followed child.
void ExecuteWithRealTools(Device& device, const _velk_request& request, const std::string& path) {
    device.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    _velk_request response{};
    (void)execute_velk_command(&request, &response);
}

// What may stand in each file at any moment at which nothing writes to it.
class WholeTexts {
  public:
    WholeTexts(const Reference& reference, const Files& after) : states_(reference.states) {
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
    bool BeginWith(const std::string& path, const std::optional<std::string>& text) const {
        return text && std::ranges::any_of(states_.at(path), [&](const auto& whole) {
                   return whole && whole->starts_with(*text);
               });
    }

  private:
    std::map<std::string, std::set<std::optional<std::string>>> states_;
};

class PowerCutTest : public testkit::DeviceTest, public testing::WithParamInterface<Group> {
  protected:
    enum class Moments { kThatDiffer, kAll };

    void CutAll(Moments moments) {
        Cuts cuts;
        std::set<std::string> courses;
        for (const Request& request : GetParam()) {
            const Reference reference = Trial({}, request.request).RunWithoutFault();
            if (courses.insert(reference.course).second) {
                CutRequest(request.request, reference, moments, cuts);
            }
            ASSERT_FALSE(HasFailure());
        }
        EXPECT_GT(cuts.all, 0);
        printf("| %s | %d | %d | %d | %d | %d | %d |\n", GetParam().front().name.c_str(), cuts.all,
               cuts.before, cuts.after, cuts.between, cuts.short_file, cuts.copy_left);
    }

  private:
    void CutRequest(const _velk_request& request, const Reference& reference, Moments moments,
                    Cuts& cuts) {
        Device device({});
        const TracedRun whole = RunTraced([&] { ExecuteWithRealTools(device, request, path_); });
        const Files after = ReadTargets();
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
        Device device({});
        const TracedRun run = RunTraced([&] { ExecuteWithRealTools(device, request, path_); }, at);
        if (!run.was_cut) {
            return;  // the tools made fewer calls this time
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
            ++cuts.short_file;
            --cuts.between;
        }
    }

    // Nothing of the cut call stands in its way, and it goes as on a device with the same files.
    void CheckTheNextCall(const _velk_request& request, const Reference& reference,
                          const Files& files, Device& device) {
        device.daemon().ServePending();
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

TEST_P(PowerCutTest, LeavesWholeFilesAndNothingThatBlocks) {
    CutAll(Moments::kThatDiffer);
}

// Also at the moments after which the device looks the same as before. Takes twenty minutes.
TEST_P(PowerCutTest, DISABLED_AtEverySystemCall) {
    CutAll(Moments::kAll);
}

INSTANTIATE_TEST_SUITE_P(All, PowerCutTest, testing::ValuesIn(SetRequests()),
                         [](const auto& group) { return TestName(group.param); });

}  // namespace
}  // namespace fault
