// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Tests of the claims in docs/security.md: no caller may reach these things through the library.
#include <cerrno>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fault/kit/requests.h"
#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::kLockFile;
using testkit::kSnmpFile;

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

// Every byte but NUL and the newline, the shell's own and sed's among them.
std::string EveryByte() {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n') {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

class TrustTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        device_.reset();
        DeviceTest::TearDown();
    }
    std::optional<Device> device_;
};

// ---- data bytes

const std::string kMarker = "$(touch /tmp/owned)";

// Returns the offset after the last byte of the data that has a meaning.
size_t EndOfData(const _velk_request& request) {
    return std::string_view(request.data, sizeof(request.data)).find_last_not_of('\0') + 1;
}

_velk_request WithMarkerAt(size_t place, _velk_request request) {
    kMarker.copy(request.data + place, sizeof(request.data) - place);
    return request;
}

// The result of a request, and the shell lines that it runs on a device made for it.
using Course = std::pair<int, std::vector<std::string>>;

class DataBytesTest : public TrustTest {
  protected:
    Course CourseOf(const _velk_request& request) {
        device_.emplace(Scene{});
        const int result = Execute(request);
        Course course{result, libc().Commands()};
        device_.reset();
        return course;
    }

    bool ReachesAShell(const _velk_request& request) {
        return testing::Value(CourseOf(request).second, Contains(HasSubstr("touch")));
    }
};

// Tried as the text itself, after a text, and after its NUL. The identity strings are escaped.
TEST_F(DataBytesTest, DataBytesReachTheShellInIdentityStringsAlone) {
    std::set<std::string> reached;
    for (const Group& group : AllRequests()) {
        for (const auto& [name, request] : group) {
            const size_t end = EndOfData(request);
            for (const size_t place : {size_t{0}, end, end + 1}) {
                if (ReachesAShell(WithMarkerAt(place, request))) {
                    reached.insert(name);
                }
            }
        }
    }
    EXPECT_THAT(reached, testing::ElementsAre("set 2", "set 3"));
}

// Shows that the requests above are not merely refused because of their data.
TEST_F(DataBytesTest, BytesAfterTheDataChangeNoShellLine) {
    for (const Group& group : AllRequests()) {
        for (const auto& [name, request] : group) {
            SCOPED_TRACE(name);
            const size_t end = EndOfData(request);
            const Course course = CourseOf(request);
            EXPECT_EQ(CourseOf(WithMarkerAt(end + 1, request)), course);
            if (end == 1) {  // a number: it needs no NUL
                EXPECT_EQ(CourseOf(WithMarkerAt(end, request)), course);
            }
        }
    }
}

// ---- interface names

TEST_F(TrustTest, NoInterfaceNameOfTheCallersReachesTheShell) {
    for (const uint32_t type : {VELK_GET, VELK_SET, VELK_RESTART}) {
        for (const char* name : {"eth0;reboot", "eth0 ", "$(reboot)", "ETH0", "eth2"}) {
            EXPECT_EQ(Execute(type, type == VELK_RESTART ? 1U : 104U, name), -4) << name;
        }
    }
    EXPECT_THAT(libc().Commands(), testing::IsEmpty());
}

// ---- identity strings

// Uses the real shell and the real sed: each value, with any bytes, is one text to both.
class EscapeTest : public TrustTest {
  protected:
    // Returns the contact line of the SNMP daemon's configuration after a set of the administrator.
    std::string ContactAfter(const std::string& value) {
        device_.emplace(Scene{});
        device_->UseRealTools();
        const std::string path = "PATH=" + PathWithHarmlessSudo() + "; export PATH; ";
        libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
        sed_status_ = -1;
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_ADMINISTRATOR, "", value), 0);
        for (const std::string& command : libc().Commands()) {
            if (command.starts_with("sudo sed")) {
                const testkit::Unrecorded ours;
                sed_status_ = system((path + command).c_str());
            }
        }
        const std::string text = testkit::ReadFile(kSnmpFile);
        const size_t at = text.find("syscontact ");
        const size_t end = text.find("\nsyslocation");
        device_.reset();
        return at == std::string::npos ? text : text.substr(at, end - at);
    }

    int sed_status_ = -1;  // as system(3) returns it; -1 if sed was not run
};

TEST_F(EscapeTest, NoValueLeavesTheQuotes) {
    for (const char* value :
         {"'; touch /tmp/owned; '", "$(touch /tmp/owned)", "`touch /tmp/owned`", "a\\'b", "-i",
          "x/e touch \\/tmp\\/owned", "x/w /tmp/owned", "&&touch /tmp/owned"}) {
        EXPECT_EQ(ContactAfter(value), std::string("syscontact ") + value);
        EXPECT_EQ(sed_status_, 0) << value;
        EXPECT_FALSE(testkit::Exists("/tmp/owned")) << value;
    }
}

TEST_F(EscapeTest, TheShellsOwnCharactersArriveUnchanged) {
    for (const char* value :
         {"O'Neil & Co/IT", "a\"b", "a$HOME`x`", "#!*?[]{}()<>|;~", "back\\slash"}) {
        EXPECT_EQ(ContactAfter(value), std::string("syscontact ") + value);
    }
}

TEST_F(EscapeTest, EveryByteArrives) {
    EXPECT_EQ(ContactAfter(EveryByte()), "syscontact " + EveryByte());
    EXPECT_EQ(sed_status_, 0);
}

// sed(1) rejects the unfinished command and changes nothing.
TEST_F(EscapeTest, ANewlineLeavesTheDaemonsFileAsItWas) {
    for (const char* value : {"a\nb", "\\\n/w /tmp/owned\n", "\n!touch /tmp/owned\n", "x/\nq"}) {
        EXPECT_EQ(ContactAfter(value), "syscontact Robin") << value;
        EXPECT_GT(sed_status_, 0) << value;
        EXPECT_FALSE(testkit::Exists("/tmp/owned")) << value;
    }
}

// ---- secrets

TEST_F(TrustTest, NoSecretReachesTheLogOrTheShell) {
    const std::string secret = "zq7Xsecret9vW";  // 13 bytes: a WEP key, too
    for (const uint32_t id : {VELK_CMD_PSK, VELK_CMD_WEP_KEY_1, VELK_CMD_WEP_KEY_2,
                              VELK_CMD_WEP_KEY_3, VELK_CMD_WEP_KEY_4}) {
        for (const testkit::Call failing :
             {testkit::Call::kFchmod, testkit::Call::kConnect, testkit::Call::kSendto,
              testkit::Call::kSelect, testkit::Call::kRecvfrom, testkit::Call::kSemOpen}) {
            device_.emplace(Scene{});
            libc().PlanFault(failing, 1, testkit::Reach::kAllFrom, EPERM);
            (void)Execute(VELK_SET, id, "eth1", secret);
            (void)Execute(VELK_SET, id, "eth1", secret + std::string(100, 'x'));  // refused
            for (const std::string& line : libc().Story()) {
                EXPECT_THAT(line, Not(HasSubstr(secret))) << id;
            }
            device_.reset();
        }
    }
}

TEST_F(TrustTest, NoSecretThatIsReadReachesTheLogOrTheShell) {
    for (const uint32_t id : {VELK_CMD_PSK, VELK_CMD_WEP_KEY_1, VELK_CMD_WEP_KEY_2,
                              VELK_CMD_WEP_KEY_3, VELK_CMD_WEP_KEY_4}) {
        device_.emplace(Scene{});
        const std::string secret = "zq7Xsecret9vW";
        ASSERT_EQ(Execute(VELK_SET, id, "eth1", secret), 0);
        ASSERT_EQ(Execute(VELK_GET, id, "eth1"), 0);
        EXPECT_EQ(testkit::Data(response, secret.size()), secret) << "it is there to be leaked";
        libc().PlanFault(testkit::Call::kSemUnlink, 1, testkit::Reach::kAllFrom, EPERM);
        (void)Execute(VELK_GET, id, "eth1");
        for (const std::string& line : libc().Story()) {
            EXPECT_THAT(line, Not(HasSubstr(secret))) << id;
        }
        device_.reset();
    }
}

TEST_F(TrustTest, NoSecretIsWrittenToAFile) {
    device_.emplace(Scene{});
    const Files before = ReadTargets();
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_PSK, "eth1", "zq7Xsecret9vW"), 0);
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_THAT(RemainingFiles(), testing::IsEmpty());
}

// ---- planted links

TEST_F(TrustTest, ALinkInTheLocksPlaceIsNotFollowed) {
    device_.emplace(Scene{});
    testkit::WriteFile("/var/libvelk/victim", "keep me\n");
    ASSERT_EQ(chmod("/var/libvelk/victim", 0600), 0);
    ASSERT_EQ(symlink("/var/libvelk/victim", kLockFile), 0);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), -1);
    struct stat status {};
    ASSERT_EQ(stat("/var/libvelk/victim", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U) << "the lock's mode would be 0666";
    EXPECT_EQ(testkit::ReadFile("/var/libvelk/victim"), "keep me\n");
}

TEST_F(TrustTest, ALinkInAnEditCopysPlaceIsReplaced) {
    device_.emplace(Scene{});
    testkit::WriteFile("/var/libvelk/victim", "keep me\n");
    ASSERT_EQ(symlink("/var/libvelk/victim", kInterfacesCopy), 0);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), 0);
    EXPECT_EQ(testkit::ReadFile("/var/libvelk/victim"), "keep me\n");
    EXPECT_THAT(testkit::ReadFile(kInterfacesFile), HasSubstr("address 10.1.2.3\n"));
}

TEST_F(TrustTest, AFolderInAnEditCopysPlaceFailsTheSetAndNothingChanges) {
    device_.emplace(Scene{});
    const Files before = ReadTargets();
    ASSERT_EQ(mkdir(kInterfacesCopy, 0755), 0);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"), -1);
    EXPECT_TRUE(ReadTargets() == before);
    EXPECT_EQ(rmdir(kInterfacesCopy), 0) << "it is as it was, too";
}

}  // namespace
}  // namespace fault
