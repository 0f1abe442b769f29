// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/mounted.h"
#include "support/paths.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::kShowLink;

constexpr char kShowLinkLine[] = "sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result";
constexpr char kGrep0[] = "grep \"eth0: link\" /var/log/syslog/syslog_info.log.0";
constexpr char kGrep1[] = "grep \"eth0: link\" /var/log/syslog/syslog_info.log.1";
constexpr char kRemove[] = "rm /var/tmp/get_result";

// The output of ethtool. Newer versions add lines; the needed one stays.
constexpr char kLinked[] =
    "Settings for eth0:\n"
    "\tSpeed: 100Mb/s\n"
    "\tDuplex: Full\n"
    "\tAuto-negotiation: on\n"
    "\tLink detected: yes\n";
constexpr char kUnlinked[] =
    "Settings for eth0:\n"
    "\tSpeed: Unknown!\n"
    "\tDuplex: Unknown! (255)\n"
    "\tAuto-negotiation: on\n"
    "\tLink detected: no\n";

class LinkDetectionTest : public testkit::DeviceTest {
  protected:
    size_t Count(Call call, const std::string& text) {
        const std::vector<std::string> texts = libc().Texts(call);
        return static_cast<size_t>(std::count(texts.begin(), texts.end(), text));
    }
    testkit::FakeShell shell;
};

TEST_F(LinkDetectionTest, ALinkIsFoundAtTheFirstAttempt) {
    shell.Prints(kShowLink, {kLinked});
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_THAT(libc().Story(), ElementsAre("system " + std::string(kShowLinkLine),
                                            "system " + std::string(kRemove)));
    EXPECT_FALSE(testkit::Exists(testkit::kResultFile));
}

TEST_F(LinkDetectionTest, NoLinkIsFoundAtTheFirstAttempt) {
    shell.Prints(kShowLink, {kUnlinked});
    EXPECT_EQ(IsWiredLinked(), 0);
    EXPECT_THAT(libc().Story(), ElementsAre("system " + std::string(kShowLinkLine),
                                            "system " + std::string(kRemove)));
}

TEST_F(LinkDetectionTest, TheFirstLineWithALinkStateDecides) {
    shell.Prints(kShowLink, {"Link detected: no\nLink detected: yes\n"});
    EXPECT_EQ(IsWiredLinked(), 0);
    shell.Prints(kShowLink, {"Link detected: yes\nLink detected: no\n"});
    EXPECT_EQ(IsWiredLinked(), 1);
}

TEST_F(LinkDetectionTest, ALineWithBothTextsIsALink) {
    shell.Prints(kShowLink, {"Link detected: no, Link detected: yes\n"});
    EXPECT_EQ(IsWiredLinked(), 1);
}

TEST_F(LinkDetectionTest, AnAnswerWithoutALineEndCounts) {
    shell.Prints(kShowLink, {"Link detected: yes"});
    EXPECT_EQ(IsWiredLinked(), 1);
}

TEST_F(LinkDetectionTest, ALaterAttemptCanSucceed) {
    shell.Prints(kShowLink, {"", "Settings for eth0:\n", kLinked});
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_THAT(
        libc().Story(),
        ElementsAre("system " + std::string(kShowLinkLine), "log IsWiredLinked ifstream", "sleep 1",
                    "system " + std::string(kShowLinkLine), "system " + std::string(kRemove),
                    "sleep 1", "system " + std::string(kShowLinkLine),
                    "system " + std::string(kRemove)));
}

TEST_F(LinkDetectionTest, TheLastAttemptCanSucceed) {
    std::vector<std::string> outputs(59, "");
    outputs.emplace_back(kLinked);
    shell.Prints(kShowLink, outputs);
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_EQ(Count(Call::kSleep, "1"), 59U);
    EXPECT_EQ(Count(Call::kSyslog, "(ETHTOOL_RETRY - 1) == i)"), 0U);
}

TEST_F(LinkDetectionTest, AfterSixtyEmptyAnswersTheSystemLogDecides) {
    shell.Prints(kShowLink, {""});
    shell.Prints(kGrep0, {"kernel: eth0: link up, 100Mbps\n"});
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_EQ(Count(Call::kSystem, kShowLinkLine), 60U);
    EXPECT_EQ(Count(Call::kSyslog, "IsWiredLinked ifstream"), 60U);
    EXPECT_EQ(Count(Call::kSyslog, "(ETHTOOL_RETRY - 1) == i)"), 1U);
    EXPECT_EQ(libc().Texts(Call::kSleep).size(), 60U);
    EXPECT_THAT(libc().Texts(Call::kSleep), Each("1"));
    EXPECT_EQ(Count(Call::kSystem, kRemove), 1U) << "an empty result is left; the log's is removed";
}

TEST_F(LinkDetectionTest, TheLastSleepComesBeforeGivingUp) {
    shell.Prints(kShowLink, {""});
    EXPECT_EQ(IsWiredLinked(), 0);
    const std::vector<std::string> story = libc().Story();
    ASSERT_EQ(story.size(), 60U * 3 + 5);
    EXPECT_EQ(story[179], "sleep 1");
    EXPECT_EQ(story[180], "log (ETHTOOL_RETRY - 1) == i)");
    EXPECT_EQ(story[181], "system " + std::string(kGrep0) + " > /var/tmp/get_result");
    EXPECT_EQ(story[182], "log Error ifs.");
    EXPECT_EQ(story[183], "system " + std::string(kGrep1) + " > /var/tmp/get_result");
    EXPECT_EQ(story[184], "log Error ifs.");
}

TEST_F(LinkDetectionTest, AnAnswerWithoutTheLineIsRemovedAndAskedAgain) {
    shell.Prints(kShowLink, {"Settings for eth0:\nNo data available\n"});
    EXPECT_EQ(IsWiredLinked(), 0);
    EXPECT_EQ(Count(Call::kSystem, kRemove), 60U);
    EXPECT_EQ(Count(Call::kSyslog, "IsWiredLinked ifstream"), 0U);
    EXPECT_EQ(Count(Call::kSyslog, "(ETHTOOL_RETRY - 1) == i)"), 1U);
}

TEST_F(LinkDetectionTest, AMissingResultFileIsAFailedAttempt) {
    shell.LeavesNoFile(kShowLink);
    EXPECT_EQ(IsWiredLinked(), 0);
    EXPECT_EQ(Count(Call::kSyslog, "IsWiredLinked ifstream"), 60U);
}

TEST_F(LinkDetectionTest, ATurnThatSomebodyKeepsIsWaitedForOnce) {
    const velk::UniqueFd folder(open(testkit::kEditFolder, O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(folder.get(), LOCK_EX), 0);
    libc().ScriptAlways(Call::kNanosleep, testkit::Return(0));
    shell.Prints(kShowLink, {"", "", kLinked});
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_EQ(libc().Events(Call::kNanosleep).size(), 1500U);
}

// A pair of connected ports in the private network, of which one is eth0.
class WiredPort {
  public:
    WiredPort() {
        Run("ip link add eth0 type veth peer name other && ip link set other up");
        SetUp("up");
        WaitForLink();
    }
    ~WiredPort() { Run("ip link delete eth0"); }
    WiredPort(const WiredPort&) = delete;
    WiredPort& operator=(const WiredPort&) = delete;

    static void SetUp(const std::string& state) { Run("ip link set eth0 " + state); }

  private:
    // The kernel sets the flag of a port that is up some time later.
    static void WaitForLink() {
        Run("for try in $(seq 200); do ip link show eth0 | grep -q 'state UP' && exit 0; "
            "sleep 0.05; done; exit 1");
    }
    static void Run(const std::string& line) {
        const testkit::Unrecorded ours;
        EXPECT_EQ(system(line.c_str()), 0) << line;
    }
};

// Nobody can write results into a read-only folder.
TEST_F(LinkDetectionTest, WhereNoResultCanBeWrittenTheKernelsFlagDecides) {
    shell.LeavesNoFile(kShowLink);
    const WiredPort port;
    const testkit::Mounted folder("none", testkit::kEditFolder, "tmpfs", MS_RDONLY, "");
    EXPECT_EQ(IsWiredLinked(), 1);
    EXPECT_EQ(libc().Texts(Call::kSleep).size(), 60U);
    WiredPort::SetUp("down");
    EXPECT_EQ(IsWiredLinked(), 0);
}

TEST_F(LinkDetectionTest, WhereNoResultCanBeWrittenAMissingPortHasNoLink) {
    shell.LeavesNoFile(kShowLink);
    const testkit::Mounted folder("none", testkit::kEditFolder, "tmpfs", MS_RDONLY, "");
    EXPECT_EQ(IsWiredLinked(), 0);
    libc().Script(Call::kSocket, {Fail(EMFILE)});
    EXPECT_EQ(IsWiredLinked(), 0);
}

TEST_F(LinkDetectionTest, WhereResultsCanBeWrittenTheKernelIsNotAsked) {
    shell.Prints(kShowLink, {""});
    const WiredPort port;
    EXPECT_EQ(IsWiredLinked(), 0);
    EXPECT_TRUE(libc().Events(Call::kIoctl).empty());
}

TEST_F(LinkDetectionTest, AShellThatCannotBeRunIsAFailedAttempt) {
    libc().ScriptAlways(Call::kSystem, Fail(EAGAIN));
    EXPECT_EQ(IsWiredLinked(), 0);
    EXPECT_EQ(Count(Call::kSyslog, "system errno=11:Resource temporarily unavailable"), 62U)
        << "60 attempts and the two log files";
    EXPECT_EQ(Count(Call::kSyslog, "IsWiredLinked ifstream"), 0U);
    EXPECT_EQ(Count(Call::kSyslog, "Error ifs."), 0U);
    EXPECT_EQ(libc().Texts(Call::kSleep).size(), 60U);
}

class LinkFromSyslogTest : public LinkDetectionTest {};

TEST_F(LinkFromSyslogTest, TheLastMessageOfTheFirstFileDecides) {
    shell.Prints(kGrep0, {"eth0: link up\nother\neth0: link down\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    shell.Prints(kGrep0, {"eth0: link down\neth0: link up\nother\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(LinkFromSyslogTest, RunsExactlyTheseLines) {
    shell.Prints(kGrep0, {"eth0: link becomes ready\n"});
    shell.Prints(kGrep1, {"eth0: link up\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("grep \"eth0: link\" /var/log/syslog/syslog_info.log.0 > "
                            "/var/tmp/get_result",
                            "rm /var/tmp/get_result",
                            "grep \"eth0: link\" /var/log/syslog/syslog_info.log.1 > "
                            "/var/tmp/get_result",
                            "rm /var/tmp/get_result"));
}

TEST_F(LinkFromSyslogTest, TheSecondFileIsNotSearchedIfTheFirstHasALinkState) {
    shell.Prints(kGrep0, {"eth0: link down\n"});
    shell.Prints(kGrep1, {"eth0: link up\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    EXPECT_EQ(libc().Commands().size(), 2U);
}

TEST_F(LinkFromSyslogTest, AnEmptyFirstResultIsLoggedAndLeft) {
    shell.Prints(kGrep0, {""});
    shell.Prints(kGrep1, {"eth0: link up\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
    EXPECT_THAT(libc().Logs(), ElementsAre("Error ifs."));
    EXPECT_EQ(Count(Call::kSystem, kRemove), 1U);
}

TEST_F(LinkFromSyslogTest, NoMessageAnywhereIsNoLink) {
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("Error ifs.", "Error ifs."));
}

TEST_F(LinkFromSyslogTest, LinesWithoutALinkStateAreNoLink) {
    shell.Prints(kGrep0, {"eth0: link is\n"});
    shell.Prints(kGrep1, {"eth0: link is\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    EXPECT_THAT(libc().Logs(), IsEmpty());
    EXPECT_EQ(Count(Call::kSystem, kRemove), 2U);
}

TEST_F(LinkFromSyslogTest, ALineWithBothTextsIsUp) {
    shell.Prints(kGrep0, {"eth0: link down, then link up\n"});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
}

TEST_F(LinkFromSyslogTest, AMissingResultFileIsLogged) {
    shell.LeavesNoFile(kGrep0);
    shell.LeavesNoFile(kGrep1);
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("Error ifs.", "Error ifs."));
}

TEST_F(LinkFromSyslogTest, AShellThatCannotBeRunMovesOnToTheSecondFile) {
    shell.Prints(kGrep1, {"eth0: link up\n"});
    libc().Script(Call::kSystem, {Fail(ENOMEM)});
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=12:Cannot allocate memory"));
}

// The same with the real shell and grep on real log files.
class RealLogFilesTest : public testkit::DeviceTest {};

TEST_F(RealLogFilesTest, TheSecondFileDecidesWhenTheFirstHasNoMessage) {
    testkit::WriteFile("/var/log/syslog/syslog_info.log.0", "kernel: eth1: link up\n");
    testkit::WriteFile("/var/log/syslog/syslog_info.log.1",
                       "Nov 21 05:24:02 velk kernel: eth0: link down\n"
                       "Nov 21 05:24:09 velk kernel: eth0: link up, 100Mbps, full-duplex\n");
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 1);
    EXPECT_FALSE(testkit::Exists(testkit::kResultFile));
}

TEST_F(RealLogFilesTest, MissingFilesAreNoLink) {
    EXPECT_EQ(IsWiredLinkedFromSyslog(), 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("Error ifs.", "Error ifs."));
}

}  // namespace
