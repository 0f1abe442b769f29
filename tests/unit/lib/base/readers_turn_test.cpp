// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/base/readers_turn.h"

#include <cerrno>
#include <csignal>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Call;
using testkit::Event;
using testkit::Fail;
using testkit::Return;
using velk::ReadersTurn;
using velk::UniqueFd;

UniqueFd OpenFolder() {
    return UniqueFd(open(testkit::kEditFolder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

bool IsFree() {
    const UniqueFd folder = OpenFolder();
    return flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

// Somebody else who has the lock.
class Holder {
  public:
    Holder() { EXPECT_EQ(flock(folder_.get(), LOCK_EX | LOCK_NB), 0); }
    void Release() { EXPECT_EQ(flock(folder_.get(), LOCK_UN), 0); }

  private:
    const UniqueFd folder_ = OpenFolder();
};

class ReadersTurnTest : public testkit::DeviceTest {
  protected:
    size_t Pauses() { return libc().Count(Call::kNanosleep); }
};

TEST_F(ReadersTurnTest, IsHeldForTheScope) {
    {
        const ReadersTurn turn;
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
    EXPECT_EQ(Pauses(), 0U);
}

TEST_F(ReadersTurnTest, OpensTheFolderForReadingAndCloseOnExec) {
    { const ReadersTurn turn; }
    const std::vector<Event> opens = libc().Events(Call::kOpen);
    ASSERT_THAT(opens, SizeIs(1));
    EXPECT_EQ(opens[0].text, testkit::kEditFolder);
    EXPECT_EQ(opens[0].number, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

TEST_F(ReadersTurnTest, AWorkerForkedMeanwhileDoesNotKeepIt) {
    pid_t worker = 0;
    {
        const ReadersTurn turn;
        worker = fork();
        if (worker == 0) {
            pause();
            _exit(0);
        }
    }
    EXPECT_TRUE(IsFree());
    { const ReadersTurn next; }
    EXPECT_EQ(Pauses(), 0U);
    kill(worker, SIGKILL);
    waitpid(worker, nullptr, 0);
}

TEST_F(ReadersTurnTest, AToolThatIsLeftRunningDoesNotKeepIt) {
    {
        const ReadersTurn turn;
        (void)!system("sleep 5 >/dev/null 2>&1 &");
    }
    EXPECT_TRUE(IsFree());
}

TEST_F(ReadersTurnTest, WaitsForAnotherReader) {
    Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        if (Pauses() == 7) {
            holder.Release();
        }
    });
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 7U);
    EXPECT_FALSE(IsFree());
}

TEST_F(ReadersTurnTest, GoesOnAfter3SecondsWithoutAChange) {
    const Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    const ReadersTurn turn;
    EXPECT_THAT(libc().Texts(Call::kNanosleep), SizeIs(1500));
    EXPECT_THAT(libc().Texts(Call::kNanosleep), Each("2000000")) << "1,500 of 2 ms: 3 seconds";
}

TEST_F(ReadersTurnTest, SignalsDoNotShortenTheWait) {
    const Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().Script(Call::kNanosleep, {Fail(EINTR), Fail(EINTR)});
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 1502U);
}

TEST_F(ReadersTurnTest, KeepsWaitingWhileResultsChange) {
    const Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        const size_t pauses = Pauses();
        const testkit::Unrecorded ours;
        if (pauses == 1000) {
            testkit::WriteFile(testkit::kResultFile, "one");
        } else if (pauses == 2000) {
            testkit::WriteFile(testkit::kResultFile, "longer");
        } else if (pauses == 3000) {
            unlink(testkit::kResultFile);
        }
    });
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 3000U + 1500U);
}

TEST_F(ReadersTurnTest, AResultOfTheSameSizeCounts) {
    const Holder holder;
    testkit::WriteFile(testkit::kResultFile, "one");
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        if (Pauses() == 1000) {
            const testkit::Unrecorded ours;
            usleep(20000);  // file times have a resolution of some milliseconds
            testkit::WriteFile(testkit::kResultFile, "two");
        }
    });
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 1000U + 1500U);
}

// Another user who keeps the lock could create and remove files endlessly.
TEST_F(ReadersTurnTest, AResultThatIsNotTheCallersFileDoesNotCount) {
    const Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        const bool is_odd = Pauses() % 2 == 1;
        const testkit::Unrecorded ours;
        EXPECT_EQ(is_odd ? mkfifo(testkit::kResultFile, 0666) : unlink(testkit::kResultFile), 0);
    });
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 1500U);
}

TEST_F(ReadersTurnTest, FifteenSecondsAreTheLongestWait) {
    const Holder holder;
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        const std::string text(Pauses() % 100, 'x');
        const testkit::Unrecorded ours;
        testkit::WriteFile(testkit::kResultFile, text);
    });
    const ReadersTurn turn;
    EXPECT_EQ(Pauses(), 7500U) << "of 2 ms";
}

TEST_F(ReadersTurnTest, AReaderWhoWaitsAlreadyComesFirst) {
    auto holder = std::make_unique<Holder>();
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    std::unique_ptr<ReadersTurn> second;
    libc().OnCall(Call::kNanosleep, [&](const Event&) {
        if (Pauses() == 1) {
            holder.reset();  // nobody has the lock, and the first still waits
            libc().OnCall(Call::kNanosleep, nullptr);
            usleep(2000);  // places are numbered by milliseconds
            second = std::make_unique<ReadersTurn>();
        }
    });
    const ReadersTurn first;
    EXPECT_EQ(Pauses(), 1U + 1500U) << "the second goes on without the lock in the end";
    EXPECT_FALSE(IsFree());
}

TEST_F(ReadersTurnTest, WithoutWaitingItGoesOnAtOnce) {
    const Holder holder;
    const ReadersTurn turn(ReadersTurn::WaitMode::kNoWait);
    EXPECT_EQ(Pauses(), 0U);
}

TEST_F(ReadersTurnTest, AfterAWaitWithoutProgressTheNextReadersDoNotWait) {
    libc().ScriptAlways(Call::kNanosleep, Return(0));
    EXPECT_EQ(ReadersTurn().next_wait_mode(), ReadersTurn::WaitMode::kInQueue);
    const Holder holder;
    EXPECT_EQ(ReadersTurn().next_wait_mode(), ReadersTurn::WaitMode::kNoWait);
}

TEST_F(ReadersTurnTest, GoesOnWithoutATurnIfTheFolderCannotBeOpened) {
    libc().Script(Call::kOpen, {Fail(EACCES)});
    { const ReadersTurn turn; }
    EXPECT_TRUE(libc().Events(Call::kFlock).empty());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ReadersTurnTest, GoesOnWithoutATurnIfTheFolderCannotBeLocked) {
    libc().ScriptAlways(Call::kFlock, Fail(ENOLCK));
    { const ReadersTurn turn; }
    EXPECT_EQ(Pauses(), 0U);
}

// Nobody can be ahead where no lock can be asked for.
TEST_F(ReadersTurnTest, GoesOnWithoutATurnIfTheFolderTakesNoLocksOfTheQueue) {
    libc().Script(Call::kOpen, {Return(open(testkit::kEditFolder, O_PATH | O_CLOEXEC))});
    { const ReadersTurn turn; }
    EXPECT_EQ(libc().Count(Call::kFlock), 2U) << "tried, and given back";
    EXPECT_EQ(Pauses(), 0U);
}

// 32 processes that read all the time. Each keeps the result file busy for a moment, as a tool
// does.
class QueueTest : public testkit::DeviceTest {
  protected:
    static constexpr int kReaders = 32;
    static constexpr int kTurns = 20;

    // Beside a reader that waits, those that came before are served, and those that came in the
    // same millisecond. A reader that does not queue lets many pass, or passes many.
    static constexpr int kMostPassed = 5 * kReaders;

    struct Shared {
        int inside;
        int overlaps;
        int served;
        int unfair;
    };
    Shared& shared_ = *static_cast<Shared*>(
        mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

    void TearDown() override {
        munmap(&shared_, sizeof(Shared));
        DeviceTest::TearDown();
    }

    static int Add(int& number, int more) {
        return __atomic_add_fetch(&number, more, __ATOMIC_SEQ_CST);
    }

    void Read() {
        const int served_before = Add(shared_.served, 0);
        const ReadersTurn turn;
        const testkit::Unrecorded ours;
        Add(shared_.overlaps, Add(shared_.inside, 1) == 1 ? 0 : 1);
        Add(shared_.unfair, Add(shared_.served, 1) - served_before > kMostPassed ? 1 : 0);
        testkit::WriteFile(testkit::kResultFile, "busy");
        usleep(1000);
        unlink(testkit::kResultFile);
        Add(shared_.inside, -1);
    }
};

TEST_F(QueueTest, EachOfManyReadersHasItsTurnsAndNoTwoMeet) {
    std::vector<pid_t> readers;
    for (int reader = 0; reader < kReaders; ++reader) {
        readers.push_back(fork());
        if (readers.back() == 0) {
            for (int turn = 0; turn < kTurns; ++turn) {
                Read();
            }
            _exit(0);
        }
    }
    for (const pid_t reader : readers) {
        waitpid(reader, nullptr, 0);
    }
    EXPECT_EQ(shared_.served, kReaders * kTurns);
    EXPECT_EQ(shared_.overlaps, 0);
    EXPECT_EQ(shared_.unfair, 0);
}

}  // namespace
