// Many processes at once: one holder of the lock at a time, and nothing anybody was told is lost.
#include <array>
#include <atomic>
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/concurrency.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::LibcRecorder;

constexpr int kProcesses = 32;

// What the processes tell one another; in memory that they share.
struct Board {
    std::atomic<bool> started;
    std::atomic<int> holders;
    std::atomic<int> crowded;  // more than one holder
    std::atomic<int> lost;     // an edit copy without what was stored last
    std::atomic<int> wrong;    // a result that is none of those expected
    std::atomic<int> waited;   // a refused caller that did more than ask for the lock
    std::atomic<int> succeeded;
    std::atomic<int> refused;
    // The value of each setting that was stored last. Written by the holder of the lock.
    char last[2][32] = {"0", "0"};
};

class SharedBoard {
  public:
    SharedBoard()
        : board_(static_cast<Board*>(mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE,
                                          MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        new (board_) Board{};
    }
    ~SharedBoard() { munmap(board_, sizeof(Board)); }
    SharedBoard(const SharedBoard&) = delete;
    SharedBoard& operator=(const SharedBoard&) = delete;
    Board* operator->() { return board_; }
    Board& operator*() { return *board_; }

  private:
    Board* const board_;
};

// Stands in for the copying of the edit: only the holder of the lock comes here. The edit holds its
// value beside what was stored last in the other setting.
void CopyAsHolder(Board& board, size_t setting, const std::string& value) {
    if (board.holders.fetch_add(1) != 0) {
        ++board.crowded;
    }
    std::array<std::string, 2> values{board.last[0], board.last[1]};
    values[setting] = value;
    const std::string text = testkit::ReadFile(kEditCopy);
    if (text != SettingsText(values)) {
        ++board.lost;
    }
    usleep(500);
    testkit::WriteFile(kSettings, text);
    --board.holders;
}

// Stands in for the removal of the edit's copy, the last step under the lock that concerns the
// file.
void EndAsHolder(Board& board, size_t setting, const std::string& value) {
    unlink(kEditCopy);
    value.copy(board.last[setting], sizeof(board.last[setting]) - 1);
    board.last[setting][value.size()] = '\0';
}

// A refused caller has opened and asked for the lock, and nothing else.
bool WasRefusedAtOnce(LibcRecorder& libc) {
    for (const Call call : {Call::kSystem, Call::kSleep, Call::kNanosleep, Call::kSelect}) {
        if (!libc.Events(call).empty()) {
            return false;
        }
    }
    return libc.Events(Call::kFlock).size() == 1;
}

void StoreOne(Board& board, int process, int round) {
    LibcRecorder& libc = LibcRecorder::Get();
    libc.ForgetEvents();
    const size_t setting = static_cast<size_t>(round) % 2;
    const std::string value = std::to_string(process) + "." + std::to_string(round);
    libc.ScriptAlways(Call::kSystem, testkit::Return(0));
    libc.OnCall(Call::kSystem, [&](const Event& event) {
        const testkit::Unrecorded ours;
        if (event.text.starts_with("cat ")) {
            CopyAsHolder(board, setting, value);
        } else if (event.text.starts_with("rm ")) {
            EndAsHolder(board, setting, value);
        }
    });
    const _velk_request request = testkit::MakeRequest(VELK_SET, kSettingIds[setting], "", value);
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    if (result == LIB_VELK_SUCCESS) {
        ++board.succeeded;
    } else if (result == LIB_VELK_LOCKED) {
        ++board.refused;
        board.waited += WasRefusedAtOnce(libc) ? 0 : 1;
    } else {
        ++board.wrong;
    }
}

// A get runs beside a set; while the file is copied it may find it empty, and so is the answer:
// this setting may be missing from the file.
void ReadOne(Board& board) {
    const _velk_request request = testkit::MakeRequest(VELK_GET, VELK_CMD_LOCATION, "");
    _velk_request response;
    const int result = execute_velk_command(&request, &response);
    static const std::regex value("[0-9.]*");
    if (result != LIB_VELK_SUCCESS || !std::regex_match(response.data, value)) {
        ++board.wrong;
    }
}

void Hammer(Board& board, int process) {
    while (!board.started) {
        usleep(100);
    }
    for (int round = 0; round < kRounds; ++round) {
        StoreOne(board, process, round);
        ReadOne(board);
    }
}

TEST_F(ConcurrencyTest, ManyProcessesLoseNoUpdateOfOneFile) {
    testkit::WriteFile(kSettings, "ADMINISTRATOR=0\nLOCATION=0\n");
    SharedBoard board;
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        const pid_t child = fork();
        if (child == 0) {
            Hammer(*board, process + 1);
            _exit(0);
        }
        children.push_back(child);
    }
    board->started = true;
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(board->succeeded + board->refused, kProcesses * kRounds);
    EXPECT_GT(board->succeeded, 0);
    EXPECT_GT(board->refused, 0) << "nobody met anybody";
    EXPECT_EQ(board->crowded, 0);
    EXPECT_EQ(board->lost, 0);
    EXPECT_EQ(board->wrong, 0);
    EXPECT_EQ(board->waited, 0);
    EXPECT_EQ(testkit::ReadFile(kSettings), SettingsText({board->last[0], board->last[1]}));
    EXPECT_STRNE(board->last[0], "0");
    EXPECT_STRNE(board->last[1], "0");
    EXPECT_FALSE(testkit::Exists(kEditCopy));
}

}  // namespace
}  // namespace fault
