#include "velkctl/near_miss.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::NearMiss;

const std::vector<std::string> kNames{"get", "set", "restart", "eth0.address", "eth0.gateway"};

TEST(NearMiss, FindsOneLetterWrongMissingTooManyOrSwapped) {
    for (const char* word : {"rastart", "estart", "restarrt", "restatr"}) {
        EXPECT_EQ(NearMiss(word, kNames), "restart") << word;
    }
}

TEST(NearMiss, FindsTwo) {
    EXPECT_EQ(NearMiss("eth0.adess", kNames), "eth0.address");
    EXPECT_EQ(NearMiss("eht0.gatewya", kNames), "eth0.gateway");
    EXPECT_EQ(NearMiss("eth0.gtwy", kNames), "");
}

TEST(NearMiss, TakesTheNearest) {
    EXPECT_EQ(NearMiss("sett", kNames), "set");
    EXPECT_EQ(NearMiss("gett", kNames), "get");
}

TEST(NearMiss, DoesNotGuessAtHalfAWord) {
    for (const char* word : {"", "a", "xyz", "gxx", "st"}) {
        EXPECT_EQ(NearMiss(word, std::vector<std::string>{"get"}), "") << word;
    }
}

TEST(NearMiss, DoesNotLookAtWhatIsFarTooLong) {
    EXPECT_EQ(NearMiss(std::string(100000, 'x'), kNames), "");
}

}  // namespace
