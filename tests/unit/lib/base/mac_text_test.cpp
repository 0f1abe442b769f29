#include "lib/base/mac_text.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

namespace {

TEST(PutMac, Writes12UpperCaseDigitsAndANul) {
    char out[16];
    memset(out, 'x', sizeof(out));
    velk::PutMac(out, {0x00, 0x1d, 0x73, 0xaa, 0x0b, 0xff});
    EXPECT_EQ(std::string(out, 16), std::string("001D73AA0BFF\0xxx", 16));
}

}  // namespace
