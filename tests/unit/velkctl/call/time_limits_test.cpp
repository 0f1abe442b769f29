// How long a user wants to wait.
#include "velkctl/call/time_limits.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace {

using velkctl::Invocation;
using velkctl::Patience;
using velkctl::PatienceOf;
using velkctl::Report;

class PatienceTest : public testing::Test {
  protected:
    std::optional<Patience> Parse(const std::optional<std::string>& wait,
                                  const std::optional<std::string>& timeout) {
        Invocation invocation;
        invocation.wait = wait;
        invocation.timeout = timeout;
        Report report(Report::Form::kText);
        testing::internal::CaptureStderr();
        const std::optional<Patience> patience = PatienceOf(invocation, report);
        error = testing::internal::GetCapturedStderr();
        return patience;
    }
    std::string error;
};

TEST_F(PatienceTest, ThereIsNoneUnlessItIsAskedFor) {
    const auto patience = Parse(std::nullopt, std::nullopt);
    ASSERT_TRUE(patience);
    EXPECT_EQ(patience->wait_seconds, 0);
    EXPECT_EQ(patience->timeout_seconds, 0);
}

TEST_F(PatienceTest, IsInSeconds) {
    const auto patience = Parse("30", "86400");
    ASSERT_TRUE(patience);
    EXPECT_EQ(patience->wait_seconds, 30);
    EXPECT_EQ(patience->timeout_seconds, 86400);
}

TEST_F(PatienceTest, IsRefusedWhenItIsNoNumber) {
    EXPECT_FALSE(Parse("soon", std::nullopt));
    EXPECT_EQ(error, "velkctl: --wait: 'soon' is not a time; give whole seconds, 1 to 86400\n");
    for (const char* word : {"", "0", "-1", "1.5", "5s", " 5", "86401", "99999999999"}) {
        EXPECT_FALSE(Parse(std::nullopt, word));
        EXPECT_EQ(error, "velkctl: --timeout: '" + std::string(word) +
                             "' is not a time; give whole seconds, 1 to 86400\n");
    }
}

}  // namespace
