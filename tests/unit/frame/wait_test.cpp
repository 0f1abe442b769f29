#include "frame/wait.h"

#include <gmock/gmock.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Return;

class WaitTest : public testkit::DeviceTest {};

TEST_F(WaitTest, SleepsTheTime) {
    velk::WaitSeconds(30);
    EXPECT_THAT(libc().Texts(Call::kSleep), ElementsAre("30"));
}

TEST_F(WaitTest, SleepsTheRestAfterASignal) {
    libc().Script(Call::kSleep, {Return(12), Return(3)});
    velk::WaitSeconds(30);
    EXPECT_THAT(libc().Texts(Call::kSleep), ElementsAre("30", "12", "3"));
}

TEST_F(WaitTest, NoTimeIsNoSleep) {
    velk::WaitSeconds(0);
    EXPECT_THAT(libc().Texts(Call::kSleep), IsEmpty());
}

}  // namespace
