// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/log.h"

#include <cerrno>

#include <gmock/gmock.h>
#include <syslog.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testkit::Call;

class LogTest : public testkit::DeviceTest {};

TEST_F(LogTest, WritesNotices) {
    velk::Log("command_type = %d", 4);
    EXPECT_THAT(libc().Logs(), ElementsAre("command_type = 4"));
    EXPECT_EQ(libc().Events(Call::kSyslog)[0].number, LOG_NOTICE);
    EXPECT_EQ(LOG_NOTICE, 5);
}

TEST_F(LogTest, AddsTheNumberAndTextOfAnError) {
    velk::LogErrno("system errno=%d:%s", ENOMEM);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=12:Cannot allocate memory"));
    EXPECT_EQ(libc().Events(Call::kSyslog)[0].number, LOG_NOTICE);
}

TEST_F(LogTest, AddsTheNumberOfAnErrorWithoutAText) {
    velk::LogErrno("flock errno=%d:%s", 9999);
    EXPECT_THAT(libc().Logs(), ElementsAre("flock errno=9999:Unknown error 9999"));
}

}  // namespace
