// Many threads of one process at once.
#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <unistd.h>

#include "fault/concurrency.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;

// What a thread stores now, for the stand-ins of its tools.
struct Store {
    size_t setting;
    std::string value;
};
thread_local Store own_store;

// Threads of one process exclude each other as processes do: half of these set, half get.
class ThreadsOfOneProcess {
  public:
    ThreadsOfOneProcess() {
        testkit::LibcRecorder& libc = testkit::LibcRecorder::Get();
        libc.ScriptAlways(Call::kSystem, testkit::Return(0));
        libc.OnCall(Call::kSystem, [this](const Event& event) {
            const testkit::Unrecorded ours;
            if (event.text.starts_with("cat ")) {
                CopyAsHolder();
            } else if (event.text.starts_with("rm ")) {
                unlink(kEditCopy);
                last_[own_store.setting] = own_store.value;
            }
        });
    }

    void Run() {
        std::vector<std::thread> threads;
        for (int number = 0; number < kThreads; ++number) {
            threads.emplace_back([this, number] {
                for (int round = 0; round < kRounds; ++round) {
                    number < kThreads / 2 ? StoreOne(number, round) : ReadOne(round);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    int crowded() const { return crowded_; }
    int lost() const { return lost_; }
    int wrong() const { return wrong_; }
    int stored() const { return stored_; }
    int refused() const { return refused_; }
    const std::array<std::string, 2>& last() const { return last_; }

  private:
    static constexpr int kThreads = 8;

    // The edit holds its value beside what was stored last in the other setting.
    void CopyAsHolder() {
        crowded_ += holders_.fetch_add(1) == 0 ? 0 : 1;
        std::array<std::string, 2> values = last_;
        values[own_store.setting] = own_store.value;
        const std::string text = testkit::ReadFile(kEditCopy);
        lost_ += text == SettingsText(values) ? 0 : 1;
        usleep(500);
        testkit::WriteFile(kSettings, text);
        --holders_;
    }

    void StoreOne(int number, int round) {
        const size_t setting = static_cast<size_t>(number + round) % 2;
        own_store = {setting, std::to_string(number) + "." + std::to_string(round)};
        const _velk_request request =
            testkit::MakeRequest(VELK_SET, kSettingIds[setting], "", own_store.value);
        _velk_request response;
        const int result = execute_velk_command(&request, &response);
        stored_ += result == LIB_VELK_SUCCESS ? 1 : 0;
        refused_ += result == LIB_VELK_LOCKED ? 1 : 0;
    }

    void ReadOne(int round) {
        const size_t setting = static_cast<size_t>(round) % 2;
        const _velk_request request = testkit::MakeRequest(VELK_GET, kSettingIds[setting], "");
        _velk_request response;
        wrong_ += execute_velk_command(&request, &response) == LIB_VELK_SUCCESS ? 0 : 1;
    }

    std::atomic<int> holders_ = 0;
    std::atomic<int> crowded_ = 0;  // more than one holder
    std::atomic<int> lost_ = 0;     // an edit copy without what was stored last
    std::atomic<int> wrong_ = 0;    // a get that failed
    std::atomic<int> stored_ = 0;
    std::atomic<int> refused_ = 0;
    std::array<std::string, 2> last_{"0", "0"};  // the holder's
};

TEST_F(ConcurrencyTest, ThreadsLoseNoUpdateEither) {
    testkit::WriteFile(kSettings, SettingsText({"0", "0"}));
    ThreadsOfOneProcess threads;
    threads.Run();
    EXPECT_EQ(threads.stored() + threads.refused(), 4 * kRounds);
    EXPECT_GT(threads.stored(), 0);
    EXPECT_GT(threads.refused(), 0) << "nobody met anybody";
    EXPECT_EQ(threads.crowded(), 0);
    EXPECT_EQ(threads.lost(), 0);
    EXPECT_EQ(threads.wrong(), 0);
    EXPECT_EQ(testkit::ReadFile(kSettings), SettingsText(threads.last()));
    EXPECT_FALSE(testkit::Exists(kEditCopy));
}

}  // namespace
}  // namespace fault
