// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about the tools that the library runs.
#include <cstdlib>
#include <filesystem>
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
using velkctl::FormatFindings;

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

TEST_F(ToolsCheck, NamesTheMissingTool) {
    EXPECT_THAT(FormatFindings(velkctl::CheckTools()), Not(HasSubstr("problem: rm ")));
    ASSERT_EQ(unlink("/tmp/rm"), 0);
    EXPECT_THAT(
        FormatFindings(velkctl::CheckTools()),
        HasSubstr("problem: rm is not installed\n"
                  "  edit copies and results stay in /var/tmp\n"
                  "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"));
}

TEST_F(ToolsCheck, SaysNothingOfARestartThatNeedsNothing) {
    EXPECT_EQ(FormatFindings(velkctl::CheckRestartTools()), "");
}

TEST_F(ToolsCheck, NamesTheToolsThatARestartLacks) {
    ASSERT_EQ(unlink("/usr/sbin/ifup"), 0);
    ASSERT_EQ(unlink("/tmp/sudo"), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckRestartTools()),
              "problem: sudo is not installed\n"
              "  no interface can be restarted, link-speed can be neither read nor set\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "problem: ifup is not installed\n"
              "  no interface can be brought up again by a restart\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n");
}

TEST_F(ToolsCheck, FindsAToolThatSudoDoesNot) {
    ASSERT_EQ(unlink("/usr/sbin/ifdown"), 0);
    WriteTool("/tmp/ifdown");
    EXPECT_EQ(FormatFindings(velkctl::CheckRestartTools()),
              "problem: ifdown is in none of the folders that sudo searches\n"
              "  no interface can be brought down by a restart\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n");
}

// A tool of root's in a folder that sudo does not search.
class ToolElsewhere : public ToolsCheck {
  protected:
    void SetUp() override {
        struct stat root {};
        if (stat("/", &root) == -1 || root.st_uid != 0) {
            GTEST_SKIP() << "the private device has no files of root's";
        }
        ASSERT_EQ(unlink("/usr/sbin/ifdown"), 0);
        for (const char* folder : {kOuterFolder, kFolder}) {
            ASSERT_EQ(mkdir(folder, 0755), 0);
            ASSERT_EQ(chmod(folder, 0755), 0);
        }
        WriteTool(kTool);
    }
    static std::string RemedyWithPath(const std::string& path) {
        setenv("PATH", (path + ":/tmp").c_str(), 1);
        const velkctl::Findings findings = velkctl::CheckRestartTools();
        return findings.empty() ? "(none)" : findings.front().remedy;
    }
    static std::string Remedy() { return RemedyWithPath(kFolder); }

    static constexpr char kOuterFolder[] = "/usr/local/tools";
    static constexpr char kFolder[] = "/usr/local/tools/net";
    static constexpr char kTool[] = "/usr/local/tools/net/ifdown";
    static constexpr char kLink[] = "ln -s /usr/local/tools/net/ifdown /usr/local/sbin/ifdown";
    static constexpr char kInstall[] =
        "install it in a folder that sudo searches, such as /usr/sbin";

  private:
    const testkit::Emptied local_{"/usr/local", "mode=755"};
};

TEST_F(ToolElsewhere, IsLinkedWhereRootAloneCanChangeIt) {
    EXPECT_EQ(Remedy(), kLink);
}

TEST_F(ToolElsewhere, IsNotLinkedWhereOthersCanWriteToIt) {
    for (const mode_t mode : {0775U, 0757U}) {
        ASSERT_EQ(chmod(kTool, mode), 0);
        EXPECT_EQ(Remedy(), kInstall) << std::oct << mode;
    }
    ASSERT_EQ(chmod(kTool, 0755), 0);
    EXPECT_EQ(Remedy(), kLink);
}

TEST_F(ToolElsewhere, IsNotLinkedWhereOthersCanReplaceIt) {
    for (const char* folder : {kFolder, kOuterFolder}) {
        for (const mode_t mode : {0775U, 0757U, 01777U}) {
            ASSERT_EQ(chmod(folder, mode), 0);
            EXPECT_EQ(Remedy(), kInstall) << folder << std::oct << mode;
        }
        ASSERT_EQ(chmod(folder, 0755), 0);
        EXPECT_EQ(Remedy(), kLink);
    }
}

TEST_F(ToolElsewhere, IsNotLinkedWhereItIsOfAnotherUser) {
    for (const char* path : {kTool, kFolder, kOuterFolder}) {
        if (chown(path, 1234, 0) == -1) {
            GTEST_SKIP() << "only root may give files away";
        }
        EXPECT_EQ(Remedy(), kInstall) << path;
        ASSERT_EQ(chown(path, 0, 0), 0);
        EXPECT_EQ(Remedy(), kLink);
    }
}

TEST_F(ToolElsewhere, IsNotLinkedWhereItsPathHasLinks) {
    ASSERT_EQ(symlink(kFolder, "/usr/local/link"), 0);
    EXPECT_EQ(RemedyWithPath("/usr/local/link"), kInstall);
    ASSERT_EQ(mkdir("/usr/local/links", 0755), 0);
    ASSERT_EQ(symlink(kTool, "/usr/local/links/ifdown"), 0);
    EXPECT_EQ(RemedyWithPath("/usr/local/links"), kInstall);
}

TEST_F(ToolElsewhere, IsNotLinkedWhereTheShellWouldChangeItsPath) {
    for (const std::string name : {"a b", "a;b", "$(a)", "a'", "*", "a\nb", "caf\xc3\xa9"}) {
        const std::string folder = std::string(kOuterFolder) + "/" + name;
        ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
        WriteTool(folder + "/ifdown");
        EXPECT_EQ(RemedyWithPath(folder), kInstall) << name;
    }
    const std::string plain = std::string(kOuterFolder) + "/A-z_0.9+";
    ASSERT_EQ(mkdir(plain.c_str(), 0755), 0);
    WriteTool(plain + "/ifdown");
    EXPECT_EQ(RemedyWithPath(plain), "ln -s " + plain + "/ifdown /usr/local/sbin/ifdown");
}

TEST_F(ToolElsewhere, IsNotLinkedFromTheCurrentFolder) {
    const std::string before = std::filesystem::current_path();
    ASSERT_EQ(chdir(kFolder), 0);
    EXPECT_EQ(RemedyWithPath(""), kInstall);
    EXPECT_EQ(RemedyWithPath("."), kInstall);
    ASSERT_EQ(chdir(before.c_str()), 0);
}

// An ordinary user on a device with every tool. Its sudo allows the lines of a file.
class SudoRights : public testkit::DeviceTest {
  protected:
    static constexpr char kCommands[] =
        "ifconfig eth1 up\n"
        "route add default gw 192.168.0.1\n"
        "route del default gw 192.168.0.1\n"
        "ethtool eth0\n"
        "ethtool -s eth0 autoneg on\n"
        "ethtool -s eth0 speed 100 duplex full autoneg off\n"
        "/usr/sbin/ethtool eth0\n"
        "ifup eth0\n"
        "ifup eth1\n"
        "ifdown eth0\n"
        "ifdown eth1\n"
        "sed -i s/syscontact.*/syscontact name/ /usr/local/share/etc/snmp/snmpd.conf\n"
        "sed -i s/syslocation.*/syslocation name/ /usr/local/share/etc/snmp/snmpd.conf\n"
        "/etc/init.d/snmpd restart\n";

    void SetUp() override {
        if (setresuid(1234, 1234, 0) == -1) {
            GTEST_SKIP() << "the private device has no other users";
        }
        ASSERT_EQ(setresuid(0, 0, 0), 0);
        for (const char* tool : {"ifconfig", "route", "ethtool", "ifup", "ifdown"}) {
            WriteTool(std::string("/usr/sbin/") + tool, "");
        }
        WriteTool("/etc/init.d/snmpd", "");
        WriteTool("/tmp/sudo",
                  "shift 2; echo \"$*\" >>/tmp/asked; grep -qxF -- \"$*\" /tmp/allowed\n");
        WriteFile("/tmp/asked", "");
        ASSERT_EQ(chmod("/tmp/asked", 0666), 0);
    }
    void TearDown() override { setenv("PATH", path_.c_str(), 1); }

    static void WriteTool(const std::string& path, const std::string& body) {
        WriteFile(path, "#!/bin/sh\n" + body);
        ASSERT_EQ(chmod(path.c_str(), 0755), 0);
    }
    // Returns the findings if sudo allows the user these commands.
    static std::string FindingsWith(const std::string& allowed) {
        WriteFile("/tmp/allowed", allowed);
        setenv("PATH", "/tmp:/usr/sbin:/usr/bin", 1);
        EXPECT_EQ(setresuid(1234, 1234, 0), 0);
        std::string findings = FormatFindings(velkctl::CheckTools());
        EXPECT_EQ(setresuid(0, 0, 0), 0);
        return findings;
    }

  private:
    const std::string path_ = getenv("PATH");
    const testkit::Emptied local_{"/usr/local", "mode=755"};
    const testkit::Emptied sbin_{"/usr/sbin", "mode=755"};
};

TEST_F(SudoRights, AreThoseOfTheLibrarysCommandsAlone) {
    EXPECT_EQ(FindingsWith(kCommands), "");
    EXPECT_EQ(testkit::ReadFile("/tmp/asked"), kCommands);
}

TEST_F(SudoRights, LackOneCommandOfATool) {
    std::string allowed = kCommands;
    const std::string line = "ifup eth1\n";
    allowed.erase(allowed.find(line), line.size());
    EXPECT_EQ(FindingsWith(allowed),
              "problem: ifup may not be run through sudo by this user without a password\n"
              "  no interface can be brought up again by a restart\n"
              "  fix: add a line to /etc/sudoers: USER ALL=(root) NOPASSWD: /usr/sbin/ifup\n");
}

class IfconfigCheck : public testkit::DeviceTest {};

TEST_F(IfconfigCheck, KnowsTheFormThatIsRead) {
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput(
                  "lo  Link encap:Local Loopback\n    inet addr:127.0.0.1  Mask:255.0.0.0\n")),
              "");
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput("")), "");
}

TEST_F(IfconfigCheck, FindsTheFormThatIsNotRead) {
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfigOutput(
                  "lo: flags=73<UP>\n        inet 127.0.0.1  netmask 255.0.0.0\n")),
              "problem: ifconfig prints addresses in a form that the library does not read\n"
              "  it prints 'inet 127.0.0.1  netmask 255.0.0.0',\n"
              "  but the library looks for 'inet addr:' and 'Mask:'\n"
              "  address and netmask of a DHCP interface are read as empty\n"
              "  fix: install an ifconfig that prints 'inet addr:ADDRESS', as busybox's does\n");
}

// A device with an ifconfig of its own.
class IfconfigRun : public testkit::DeviceTest {
  protected:
    IfconfigRun() : path_(getenv("PATH")) { setenv("PATH", ("/tmp:" + path_).c_str(), 1); }
    ~IfconfigRun() override { setenv("PATH", path_.c_str(), 1); }

    static std::string With(const std::string& body) {
        WriteFile("/tmp/ifconfig", "#!/bin/sh\necho \"$@\" >>/tmp/asked\n" + body);
        EXPECT_EQ(chmod("/tmp/ifconfig", 0755), 0);
        return FormatFindings(velkctl::CheckIfconfig());
    }
    static constexpr char kUnreadable[] = "echo 'inet 10.0.0.1'\n";
    static constexpr char kReadable[] = "echo 'inet addr:10.0.0.1  Mask:255.0.0.0'\n";

  private:
    const std::string path_;
};

TEST_F(IfconfigRun, IsJudgedByTheFirstInterfaceWithAnAddress) {
    EXPECT_EQ(With(kReadable), "");
    EXPECT_EQ(testkit::ReadFile("/tmp/asked"), "lo\n");
    EXPECT_THAT(With(kUnreadable), HasSubstr("problem: ifconfig prints addresses in a form"));
    EXPECT_THAT(With("[ $1 = lo ] || " + std::string(kUnreadable)),
                HasSubstr("problem: ifconfig prints addresses in a form"))
        << "of eth0";
    EXPECT_EQ(With("[ $1 = lo ] || " + std::string(kReadable)), "");
    EXPECT_EQ(With("[ $1 = eth1 ] && " + std::string(kUnreadable)), "") << "neither has one";
}

TEST_F(IfconfigCheck, WantsAddressAndMask) {
    EXPECT_NE(FormatFindings(velkctl::CheckIfconfigOutput("inet addr:10.0.0.1  netmask 255.0.0.0")),
              "");
    EXPECT_NE(FormatFindings(velkctl::CheckIfconfigOutput("inet 10.0.0.1  Mask:255.0.0.0")), "");
}

TEST_F(ToolsCheck, FindsAMissingIfconfigOnce) {
    ASSERT_EQ(unlink("/tmp/ifconfig"), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckIfconfig()), "");
    EXPECT_THAT(FormatFindings(velkctl::CheckTools()),
                HasSubstr("problem: ifconfig is not installed\n"));
}

// Each tool is missed with its consequence. The tests of sudo's rights have all of them.
TEST_F(ToolsCheck, MissesEveryTool) {
    for (const char* tool : {"/tmp/sudo", "/tmp/cat", "/tmp/rm", "/tmp/grep", "/tmp/ifconfig",
                             "/usr/sbin/ifup", "/usr/sbin/ifdown"}) {
        ASSERT_EQ(unlink(tool), 0);
    }
    EXPECT_EQ(FormatFindings(velkctl::CheckTools()),
              "problem: sudo is not installed\n"
              "  no interface can be restarted, link-speed can be neither read nor set\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "problem: cat is not installed\n"
              "  no setting in a file can be set\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "problem: rm is not installed\n"
              "  edit copies and results stay in /var/tmp\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "warning: grep is not installed\n"
              "  the link cannot be read from the log when ethtool does not report it\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "problem: ifconfig is not installed\n"
              "  address and netmask of a DHCP interface cannot be read\n"
              "  fix: install it in a folder that velkctl searches, such as /usr/bin\n"
              "warning: route is not installed\n"
              "  the running default gateway cannot be changed, only the one in the file\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n"
              "problem: ethtool is not installed\n"
              "  eth0.link-speed can be neither read nor set\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n"
              "problem: /usr/sbin/ethtool is not installed\n"
              "  it takes a minute to find out whether the cable is in\n"
              "  fix: install it, or a link to it, as /usr/sbin/ethtool\n"
              "problem: ifup is not installed\n"
              "  no interface can be brought up again by a restart\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n"
              "problem: ifdown is not installed\n"
              "  no interface can be brought down by a restart\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n"
              "problem: sed is not installed\n"
              "  administrator and location do not reach the SNMP agent\n"
              "  fix: install it in a folder that sudo searches, such as /usr/sbin\n"
              "problem: /etc/init.d/snmpd is not installed\n"
              "  administrator and location do not reach the running SNMP agent\n"
              "  fix: install it, or a link to it, as /etc/init.d/snmpd\n");
}

TEST_F(ToolsCheck, OfASettingAreThoseThatItNeeds) {
    for (const char* tool : {"/tmp/sudo", "/tmp/cat", "/tmp/rm", "/tmp/grep", "/tmp/ifconfig",
                             "/usr/sbin/ifup", "/usr/sbin/ifdown"}) {
        ASSERT_EQ(unlink(tool), 0);
    }
    const auto missed = [](const std::string& name) {
        std::string subjects;
        for (const velkctl::Finding& finding :
             velkctl::CheckToolsFor(velkctl::FindSetting(name).value())) {
            subjects.append(finding.subject).append(" ");
        }
        return subjects;
    };
    EXPECT_EQ(missed("eth0.link-speed"), "sudo ethtool ");
    EXPECT_EQ(missed("eth0.address"), "cat ifconfig ");
    EXPECT_EQ(missed("eth0.gateway"), "cat ");
    EXPECT_EQ(missed("ntp"), "cat ");
    EXPECT_EQ(missed("eth0.dns"), "");
    EXPECT_EQ(missed("eth1.ssid"), "");
}

}  // namespace
