// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// A get at the moment at which the set of another program has emptied the file and not yet filled
// it.
#include <gmock/gmock.h>

#include "fault/kit/concurrency.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::Call;
using testkit::Event;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;

// Both gets run within the shell line that copies; a get takes no lock.
class GetBesideSetTest : public ConcurrencyTest {
  protected:
    // Returns the result of the get while the file that the set changes is empty.
    int GetWhileCopied(const _velk_request& set, const char* path, const _velk_request& get) {
        int result = 1;
        libc().ScriptAlways(Call::kSystem, testkit::Return(0));
        libc().OnCall(Call::kSystem, [&](const Event& event) {
            if (event.text.starts_with("cat ")) {
                testkit::WriteFile(path, "");
                answer_ = testkit::DirtyResponse();
                result = execute_velk_command(&get, &answer_);
            }
        });
        EXPECT_EQ(Execute(set), 0);
        libc().OnCall(Call::kSystem, nullptr);
        return result;
    }

    _velk_request answer_{};
};

TEST_F(GetBesideSetTest, AGetOfAnOptionalSettingReturnsNoText) {
    testkit::WriteFile(kIdentityFile, SettingsText({"Robin", "Cellar"}));
    EXPECT_EQ(
        GetWhileCopied(testkit::MakeRequest(VELK_SET, VELK_CMD_LOCATION, "", "Attic"),
                       kIdentityFile, testkit::MakeRequest(VELK_GET, VELK_CMD_ADMINISTRATOR, "")),
        0);
    EXPECT_STREQ(answer_.data, "");
}

TEST_F(GetBesideSetTest, AGetFailsIfItsValueMustExist) {
    for (const uint32_t id : {VELK_CMD_IP_METHOD, VELK_CMD_NETMASK}) {
        testkit::WriteFile(kInterfacesFile,
                           "auto eth0\niface eth0 inet static\n\taddress 192.168.0.10\n"
                           "\tnetmask 255.255.255.0\n");
        EXPECT_EQ(
            GetWhileCopied(testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.1.2.3"),
                           kInterfacesFile, testkit::MakeRequest(VELK_GET, id, "eth0")),
            -1)
            << id;
    }
}

}  // namespace
}  // namespace fault
