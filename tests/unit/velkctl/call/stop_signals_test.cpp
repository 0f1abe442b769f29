// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The signals that end velkctl, while they are put off.
#include "velkctl/call/stop_signals.h"

#include <csignal>

#include <gtest/gtest.h>

namespace {

using velkctl::StopSignals;

TEST(StopSignalsTest, NoSignalIsPendingAtFirst) {
    const StopSignals signals;
    EXPECT_EQ(signals.Pending(), 0);
}

TEST(StopSignalsTest, AnInnerOneLeavesTheSignalsToTheOuterOne) {
    const StopSignals outer;
    {
        const StopSignals inner;
        EXPECT_EQ(sigismember(&StopSignals::before(), SIGTERM), 0) << "for the tools of a child";
    }
    (void)raise(SIGTERM);
    EXPECT_EQ(outer.Pending(), SIGTERM);
    int signal = 0;
    (void)sigwait(&outer.signals(), &signal);
}

TEST(StopSignalsDeathTest, APendingSignalEndsTheProcessAtTheEndOfTheScope) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const auto put_off = [signal] {
            const StopSignals signals;
            (void)raise(signal);
            fprintf(stderr, "pending: %d\n", signals.Pending() == signal);
        };
        EXPECT_EXIT(put_off(), testing::KilledBySignal(signal), "pending: 1");
    }
}

TEST(StopSignalsDeathTest, NoSignalEndsAProcessThatIgnoresThem) {
    const auto ignore = [] {
        velkctl::IgnoreStopSignals();
        const StopSignals signals;
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
            (void)raise(signal);
        }
        if (signals.Pending() != 0) {
            _exit(1);
        }
        // A program that it starts gets them as usual.
        (void)execl("/bin/sh", "sh", "-c", "kill -TERM $$", nullptr);
    };
    EXPECT_EXIT(ignore(), testing::KilledBySignal(SIGTERM), "");
}

TEST(StopSignalsDeathTest, AnIgnoredSignalStaysIgnored) {
    const auto ignore = [] {
        (void)signal(SIGHUP, SIG_IGN);
        const StopSignals signals;
        (void)raise(SIGHUP);
        _exit(signals.Pending());
    };
    EXPECT_EXIT(ignore(), testing::ExitedWithCode(0), "");
}

TEST(StopSignalsDeathTest, AnotherSignalIsNotDelayed) {
    const auto quit = [] {
        const StopSignals signals;
        (void)raise(SIGUSR1);
    };
    EXPECT_EXIT(quit(), testing::KilledBySignal(SIGUSR1), "");
}

TEST(EndBySignalDeathTest, EndsTheProcessByTheSignalEvenIfItIsDelayed) {
    const auto end = [] {
        const StopSignals signals;
        velkctl::EndBySignal(SIGINT);
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(SIGINT), "");
}

}  // namespace
