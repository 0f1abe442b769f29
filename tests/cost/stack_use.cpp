// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stack_use.cpp - makes one request on a thread with a stack of 64 KiB and prints how many bytes of
// it were used, including the part of the C library. Fails if the result is not the expected one.
//
// stack_use RESULT get|set ID INTERFACE [DATA]
#include <algorithm>
#include <cstdio>
#include <cstring>

#include <pthread.h>
#include <sys/mman.h>

#include "cost/request_words.h"

namespace {

constexpr size_t kStackSize = 64 * 1024;
constexpr size_t kGuardSize = 64 * 1024;  // a multiple of every page size
constexpr unsigned char kPaint = 0xA5;

// Returns a stack filled with a pattern, so that its use can be measured. The pages below it are
// inaccessible. Returns null without memory.
unsigned char* PaintedStack() {
    void* const guard =
        mmap(nullptr, kGuardSize + kStackSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (guard == MAP_FAILED) {
        return nullptr;
    }
    unsigned char* const stack = static_cast<unsigned char*>(guard) + kGuardSize;
    if (mprotect(stack, kStackSize, PROT_READ | PROT_WRITE) != 0) {
        return nullptr;
    }
    memset(stack, kPaint, kStackSize);
    return stack;
}

// True if the thread could be started and returned null.
bool RunOn(unsigned char* stack, void* (*work)(void*)) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack, kStackSize);
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, work, nullptr);
    pthread_attr_destroy(&attributes);
    void* answer = nullptr;
    return error == 0 && pthread_join(thread, &answer) == 0 && answer == nullptr;
}

size_t UsedOf(const unsigned char* stack) {
    const unsigned char* const end = stack + kStackSize;
    return static_cast<size_t>(
        end - std::find_if(stack, end, [](unsigned char byte) { return byte != kPaint; }));
}

// Not on the thread's stack, so that the records of the caller do not count.
cost::ExpectedCall call;
_velk_request response;

// Returns null if the call has the expected result.
void* MakeCall(void* /*argument*/) {
    const int result = execute_velk_command(&call.request, &response);
    return result == call.result ? nullptr : &call;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) {
        return 2;
    }
    call = cost::ReadCall(argv + 1);
    unsigned char* const stack = PaintedStack();
    if (stack == nullptr || !RunOn(stack, MakeCall)) {
        return 1;
    }
    printf("%zu\n", UsedOf(stack));
    return 0;
}
