// What the doctor says about the tools that the library runs.
#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/mounted.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using testkit::WriteFile;
using velkctl::FindingsInWords;

// A device with tools in /tmp, the one folder of PATH, and with little where sudo looks.
class ToolsCheck : public testkit::DeviceTest {
  protected:
    ToolsCheck() : path_(getenv("PATH")) {
        setenv("PATH", "/tmp", 1);
        for (const char* tool : {"sudo", "cat", "rm", "grep", "ifconfig"}) {
            WriteTool(std::string("/tmp/") + tool);
        }
        WriteTool("/usr/sbin/ifup");
        WriteTool("/usr/sbin/ifdown");
    }
    ~ToolsCheck() override { setenv("PATH", path_.c_str(), 1); }

    static void WriteTool(const std::string& path) {
        WriteFile(path, "#!/bin/sh\n");
        ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    }

  private:
    const std::string path_;
    // The machine's own tools are out of sight. /bin and /sbin are links into /usr.
    const testkit::Emptied local_{"/usr/local"};
    const testkit::Emptied bin_{"/usr/bin"};
    const testkit::Emptied sbin_{"/usr/sbin"};
};

TEST_F(ToolsCheck, TellsWhichToolIsMissing) {
    EXPECT_THAT(FindingsInWords(velkctl::CheckTools()), Not(HasSubstr("problem: rm ")));
    ASSERT_EQ(unlink("/tmp/rm"), 0);
    EXPECT_THAT(
        FindingsInWords(velkctl::CheckTools()),
        HasSubstr("problem: rm is not installed: edit copies and results stay behind in "
                  "/var/tmp\n  mend: install it in a folder where velkctl looks, as /usr/bin\n"));
}

TEST_F(ToolsCheck, SaysNothingOfARestartThatNeedsNothing) {
    EXPECT_EQ(FindingsInWords(velkctl::RestartObstacles()), "");
}

TEST_F(ToolsCheck, TellsWhichToolKeepsARestartFromItsEffect) {
    ASSERT_EQ(unlink("/usr/sbin/ifup"), 0);
    ASSERT_EQ(unlink("/tmp/sudo"), 0);
    EXPECT_EQ(FindingsInWords(velkctl::RestartObstacles()),
              "problem: sudo is not installed: no interface can be restarted, link-speed can be "
              "neither read nor set\n"
              "  mend: install it in a folder where velkctl looks, as /usr/bin\n"
              "problem: ifup is not installed: no interface can be brought up again by a restart\n"
              "  mend: install it in a folder where sudo looks, as /usr/sbin\n");
}

TEST_F(ToolsCheck, FindsAToolThatSudoDoesNot) {
    ASSERT_EQ(unlink("/usr/sbin/ifdown"), 0);
    WriteTool("/tmp/ifdown");
    EXPECT_EQ(FindingsInWords(velkctl::RestartObstacles()),
              "problem: ifdown is not in a folder where sudo looks: no interface can be brought "
              "down by a restart\n"
              "  mend: ln -s /tmp/ifdown /usr/local/sbin/ifdown\n");
}

}  // namespace
