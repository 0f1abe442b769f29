// Hosts that call on a thread with a small stack.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include <gmock/gmock.h>
#include <pthread.h>
#include <sys/mman.h>

#include "fault/host.h"

namespace fault {
namespace {

// A thread on memory that shows how deep its stack went. Nothing may be read or written right below
// it.
class PaintedThread {
  public:
    explicit PaintedThread(size_t size)
        : size_(size),
          guard_(mmap(nullptr, kGuardSize + size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)),
          memory_(static_cast<unsigned char*>(guard_) + kGuardSize) {
        EXPECT_EQ(mprotect(memory_, size_, PROT_READ | PROT_WRITE), 0);
        memset(memory_, kPaint, size_);
    }
    ~PaintedThread() { munmap(guard_, kGuardSize + size_); }
    PaintedThread(const PaintedThread&) = delete;
    PaintedThread& operator=(const PaintedThread&) = delete;

    // False when the thread cannot be started.
    bool Run(void* (*work)(void*), void* argument) {
        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setstack(&attributes, memory_, size_);
        pthread_t thread{};
        const int error = pthread_create(&thread, &attributes, work, argument);
        pthread_attr_destroy(&attributes);
        return error == 0 && pthread_join(thread, nullptr) == 0;
    }

    size_t used() const {
        const auto* deepest =
            std::find_if(memory_, memory_ + size_, [](unsigned char c) { return c != kPaint; });
        return static_cast<size_t>(memory_ + size_ - deepest);
    }

  private:
    static constexpr unsigned char kPaint = 0xA5;
    static constexpr size_t kGuardSize = 64 * 1024;  // whole pages, whatever their size
    const size_t size_;
    void* const guard_;
    unsigned char* const memory_;
};

// The sanitizers need more than the library does.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr size_t kSmallStack = 1024 * 1024;
constexpr size_t kUseLimit = kSmallStack;
#else
constexpr size_t kSmallStack = 64 * 1024;
constexpr size_t kUseLimit = kSmallStack / 2;
#endif

TEST_F(HostTest, WithASmallStackCanSetAndAskTheDaemon) {
    struct Answers {
        bool set = false;
        int query = -1;
    } answers;
    PaintedThread thread(kSmallStack);
    ASSERT_TRUE(thread.Run(
        [](void* argument) -> void* {
            auto& told = *static_cast<Answers*>(argument);
            _velk_request own{};
            told.set = AddressCanBeSet("10.1.2.3");
            told.query = QuerySsid(own);
            return nullptr;
        },
        &answers));
    EXPECT_TRUE(answers.set);
    EXPECT_EQ(answers.query, 0);
    EXPECT_LT(thread.used(), kUseLimit);
    printf("stack used, the test kit's part included: %zu of %zu bytes\n", thread.used(),
           kSmallStack);
}

}  // namespace
}  // namespace fault
