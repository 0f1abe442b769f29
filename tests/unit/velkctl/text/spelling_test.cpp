#include "velkctl/text/spelling.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using velkctl::DidYouMean;
using velkctl::NearMisses;
using velkctl::OneOf;
using Words = std::vector<std::string>;

const Words kNames{"get", "set", "restart", "eth0.address", "eth0.gateway"};

TEST(NearMisses, FindsOneLetterWrongMissingTooManyOrSwapped) {
    for (const char* word : {"rastart", "estart", "restarrt", "restatr"}) {
        EXPECT_EQ(NearMisses(word, kNames), Words{"restart"}) << word;
    }
}

TEST(NearMisses, FindsTwo) {
    EXPECT_EQ(NearMisses("eth0.adess", kNames), Words{"eth0.address"});
    EXPECT_EQ(NearMisses("eht0.gatewya", kNames), Words{"eth0.gateway"});
    EXPECT_EQ(NearMisses("eth0.gtwy", kNames), Words{});
}

TEST(NearMisses, TakesSmallLettersForCapitalOnes) {
    EXPECT_EQ(NearMisses("RESTART", kNames), Words{"restart"});
    EXPECT_EQ(NearMisses("loked", Words{"LOCKED"}), Words{"LOCKED"});
    EXPECT_EQ(NearMisses("OLcked", Words{"LOCKED"}), Words{"LOCKED"});
}

TEST(NearMisses, TakesTheNearest) {
    EXPECT_EQ(NearMisses("sett", kNames), Words{"set"});
    EXPECT_EQ(NearMisses("gett", kNames), Words{"get"});
}

TEST(NearMisses, TakesAllThatAreEquallyNear) {
    EXPECT_EQ(NearMisses("bet", kNames), (Words{"get", "set"}));
    EXPECT_EQ(NearMisses("abc5", Words{"abc1", "abc2", "abc3", "abc4"}).size(), 4U);
}

TEST(NearMisses, TakesNoneWhenTooManyAre) {
    EXPECT_EQ(NearMisses("abc9", Words{"abc1", "abc2", "abc3", "abc4", "abc5"}), Words{});
}

TEST(NearMisses, TakesWhatTheWordIsTheBeginningOf) {
    EXPECT_EQ(NearMisses("eth0.gate", kNames), Words{"eth0.gateway"});
    EXPECT_EQ(NearMisses("eth0", kNames), (Words{"eth0.address", "eth0.gateway"}));
    EXPECT_EQ(NearMisses("res", kNames), Words{"restart"});
    EXPECT_EQ(NearMisses("re", kNames), Words{});
}

TEST(NearMisses, DoesNotGuessAtHalfAWord) {
    for (const char* word : {"", "a", "xyz", "gxx", "st"}) {
        EXPECT_EQ(NearMisses(word, Words{"get"}), Words{}) << word;
    }
    EXPECT_EQ(NearMisses("1", Words{"10", "11", "2"}), Words{});
}

TEST(NearMisses, DoesNotLookAtWhatIsFarTooLong) {
    EXPECT_EQ(NearMisses(std::string(100000, 'x'), kNames), Words{});
}

TEST(DidYouMean, NamesWhatIsNearOrSaysWhatElseIsRight) {
    EXPECT_EQ(DidYouMean("restat", kNames, "give a verb"), "; did you mean restart?");
    EXPECT_EQ(DidYouMean("bet", kNames, "give a verb"), "; did you mean get or set?");
    EXPECT_EQ(DidYouMean("nonsense", kNames, "give a verb"), "; give a verb");
    EXPECT_EQ(DidYouMean("x", {}, "give a verb"), "; give a verb");
}

TEST(OneOf, ListsWords) {
    EXPECT_EQ(OneOf({}), "");
    EXPECT_EQ(OneOf(Words{"on"}), "on");
    EXPECT_EQ(OneOf(Words{"on", "off"}), "on or off");
    EXPECT_EQ(OneOf(Words{"1", "2", "3"}), "1, 2 or 3");
}

}  // namespace
