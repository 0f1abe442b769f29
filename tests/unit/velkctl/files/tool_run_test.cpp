// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Tools of the device, found and run for a moment.
#include "velkctl/files/tool_run.h"

#include <csignal>
#include <cstdlib>
#include <string>

#include <sys/stat.h>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::FindTool;
using velkctl::RunTool;
using velkctl::ToolRun;

class ToolRunTest : public testkit::DeviceTest {
  protected:
    ToolRunTest() : path_(getenv("PATH")) {}
    ~ToolRunTest() override { setenv("PATH", path_.c_str(), 1); }

    static void WriteTool(const std::string& path, const std::string& text) {
        WriteFile(path, "#!/bin/sh\n" + text);
        ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    }

  private:
    const std::string path_;
};

TEST_F(ToolRunTest, FindsAToolAsAShellDoes) {
    WriteTool("/tmp/velk-tool", "");
    setenv("PATH", "/missing:/tmp:/bin", 1);
    EXPECT_EQ(FindTool("velk-tool"), "/tmp/velk-tool");
    ASSERT_EQ(chmod("/tmp/velk-tool", 0644), 0);
    EXPECT_EQ(FindTool("velk-tool"), std::nullopt);
    EXPECT_EQ(FindTool("/tmp/velk-tool"), std::nullopt);
    EXPECT_EQ(FindTool("/bin/sh"), "/bin/sh");
    setenv("PATH", "/missing", 1);
    EXPECT_EQ(FindTool("sh"), std::nullopt);
    EXPECT_EQ(FindTool("sh", "/missing:/bin"), "/bin/sh");
    setenv("PATH", "/bin", 1);
    EXPECT_EQ(FindTool("sh", "/missing"), std::nullopt);
}

TEST_F(ToolRunTest, KeepsTheOutputAndTheExitStatusOfATool) {
    WriteTool("/tmp/velk-tool", "echo \"$1\"; echo error >&2; cat; exit 3\n");
    const ToolRun run = RunTool({"/tmp/velk-tool", "a b"});
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "a b\n");
    EXPECT_FALSE(RunTool({"/tmp/velk-missing"}).ended);
}

// A daemon that a tool starts inherits its signal mask.
TEST_F(ToolRunTest, StartsAToolWithoutBlockedSignals) {
    sigset_t all;
    sigset_t before;
    (void)sigfillset(&all);
    (void)sigprocmask(SIG_BLOCK, &all, &before);
    const ToolRun run = RunTool({"grep", "SigBlk", "/proc/self/status"});
    (void)sigprocmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(run.output, "SigBlk:\t0000000000000000\n");
}

TEST_F(ToolRunTest, KillsAToolThatDoesNotEnd) {
    WriteTool("/tmp/velk-tool", "echo begun; sleep 15\n");
    const ToolRun run = RunTool({"/tmp/velk-tool"});
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(run.output, "begun\n");
}

TEST_F(ToolRunTest, KillsAToolThatMustNotGoOn) {
    WriteTool("/tmp/velk-tool", "sleep 15\n");
    int looks = 0;
    const ToolRun run =
        RunTool({"/tmp/velk-tool"}, std::chrono::seconds(10), [&] { return ++looks == 3; });
    EXPECT_FALSE(run.ended);
    EXPECT_EQ(looks, 3);
}

}  // namespace
