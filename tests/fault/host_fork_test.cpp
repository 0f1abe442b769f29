// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Hosts that call in a child of fork(2), without a new program in it.
#include <string_view>
#include <thread>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fault/kit/host.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::LibcRecorder;

TEST_F(HostTest, AHostThatForksCanCallOnBothSides) {
    _velk_request own{};
    EXPECT_TRUE(AddressCanBeSet("10.1.2.3"));
    EXPECT_EQ(QuerySsid(own), 0);
    EXPECT_TRUE(InAHost([] {
        _velk_request answer{};
        return RequestAddress(VELK_GET, "", answer) == 0 &&
               std::string_view(answer.data) == "10.1.2.3" && AddressCanBeSet("10.1.2.4") &&
               QuerySsid(answer) == 0;
    }));
    EXPECT_EQ(RequestAddress(VELK_GET, "", own), 0);
    EXPECT_STREQ(own.data, "10.1.2.4");
    EXPECT_TRUE(AddressCanBeSet("10.1.2.5"));
    EXPECT_EQ(QuerySsid(own), 0);
}

// A signal from one thread or process to another, which waits for it.
class Word {
  public:
    Word() { EXPECT_EQ(pipe(ends_), 0); }
    ~Word() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Word(const Word&) = delete;
    Word& operator=(const Word&) = delete;

    void Wait() const {
        const testkit::Unrecorded ours;
        char byte = 0;
        EXPECT_EQ(read(ends_[0], &byte, 1), 1);
    }
    void Give() const {
        const testkit::Unrecorded ours;
        EXPECT_EQ(write(ends_[1], "", 1), 1);
    }

  private:
    int ends_[2] = {-1, -1};
};

// Waits until the lock is free, ten seconds at most.
int SetPatiently(const char* address) {
    int result = LIB_VELK_LOCKED;
    for (int tries = 0; tries < 1000 && result == LIB_VELK_LOCKED; ++tries) {
        _velk_request own{};
        result = RequestAddress(VELK_SET, address, own);
        usleep(10 * 1000);
    }
    return result;
}

// The child keeps the descriptor of the lock too. The lock must end with the set nevertheless.
TEST_F(HostTest, AHostThatForksWhileAThreadHoldsTheLockCanCallInTheChild) {
    const Word is_held;
    const Word may_end;
    libc().OnCall(Call::kSystem, [&](const Event& event) {
        if (event.text.starts_with("cat ")) {
            is_held.Give();
            may_end.Wait();
        }
    });
    int set = 1;
    std::thread holder([&] {
        _velk_request own{};
        set = RequestAddress(VELK_SET, "10.1.2.3", own);
    });
    is_held.Wait();
    EXPECT_TRUE(InAHost([&] {
        LibcRecorder::Get().OnCall(Call::kSystem, nullptr);
        _velk_request own{};
        const bool is_refused = RequestAddress(VELK_SET, "10.1.2.4", own) == LIB_VELK_LOCKED;
        const bool can_get = RequestAddress(VELK_GET, "", own) == 0;
        may_end.Give();
        return is_refused && can_get && SetPatiently("10.1.2.4") == 0;
    }));
    holder.join();
    EXPECT_EQ(set, 0);
    _velk_request own{};
    EXPECT_EQ(RequestAddress(VELK_GET, "", own), 0);
    EXPECT_STREQ(own.data, "10.1.2.4");
}

}  // namespace
}  // namespace fault
