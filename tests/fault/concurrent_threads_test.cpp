// Many threads of one process at once.
#include <atomic>
#include <regex>
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

// Threads of one process exclude each other as processes do. For the thread sanitizer too.
TEST_F(ConcurrencyTest, ThreadsLoseNoUpdateEither) {
    testkit::WriteFile(kSettings, "ADMINISTRATOR=0\nLOCATION=0\n");
    std::atomic<int> wrong = 0;
    std::atomic<int> stored = 0;
    std::atomic<int> holders = 0;
    libc().ScriptAlways(Call::kSystem, testkit::Return(0));
    libc().OnCall(Call::kSystem, [&](const Event& event) {
        const testkit::Unrecorded ours;
        if (event.text.starts_with("cat ")) {
            wrong += holders.fetch_add(1) == 0 ? 0 : 1;
            testkit::WriteFile(kSettings, testkit::ReadFile(kEditCopy));
            --holders;
        } else if (event.text.starts_with("rm ")) {
            unlink(kEditCopy);
        }
    });
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([&, number] {
            for (int round = 0; round < kRounds; ++round) {
                const uint32_t id = number % 2 == 0 ? VELK_CMD_ADMINISTRATOR : VELK_CMD_LOCATION;
                const bool is_set = number < 4;
                const _velk_request request =
                    testkit::MakeRequest(is_set ? VELK_SET : VELK_GET, id, "", "7");
                _velk_request own;
                const int result = execute_velk_command(&request, &own);
                const bool is_expected = result == 0 || (is_set && result == LIB_VELK_LOCKED);
                wrong += is_expected ? 0 : 1;
                stored += is_set && result == 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(stored, 0);
    const std::string text = testkit::ReadFile(kSettings);
    EXPECT_TRUE(std::regex_match(text, std::regex("ADMINISTRATOR=[07]\nLOCATION=[07]\n"))) << text;
    EXPECT_NE(text, "ADMINISTRATOR=0\nLOCATION=0\n");
}

}  // namespace
}  // namespace fault
