// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Many threads of one process at once exclude each other as processes do.
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "fault/kit/concurrency.h"

namespace fault {
namespace {

constexpr int kThreads = 4;  // as many set as get

void Store(Board& board, int thread) {
    for (int round = 0; round < kRounds; ++round) {
        const std::string value = std::to_string(thread) + "." + std::to_string(round);
        while (StoreOne(board, static_cast<size_t>(thread + round) % 2, value) == LIB_VELK_LOCKED) {
        }
    }
}

void Read(Board& board) {
    for (int round = 0; round < kRounds; ++round) {
        ReadOne(board, static_cast<size_t>(round) % 2);
    }
}

TEST_F(ConcurrencyTest, ManyThreadsLoseNoUpdateOfOneFile) {
    Board board{};
    MeetAt(board);
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&board, number] { Store(board, number); });
        threads.emplace_back([&board] { Read(board); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    ExpectNothingLost(board, kThreads);
}

}  // namespace
}  // namespace fault
