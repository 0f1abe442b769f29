// The recorder's own byte behind each block must not hide an access there from the sanitizer.
#include <cstddef>

#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>

TEST(AllocationBoundsTest, AreThoseThatWereAskedFor) {
    for (size_t size = 1; size <= 16; ++size) {
        char* const block = new char[size];
        EXPECT_FALSE(__asan_address_is_poisoned(block + size - 1)) << size;
        EXPECT_TRUE(__asan_address_is_poisoned(block + size)) << size;
        delete[] block;
    }
}
#endif
