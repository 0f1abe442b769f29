// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Every command of the library that sets something is known to velkctl: to its catalogue, to the
// doctor and to the search for edit copies. A test names the id that one of them lacks.
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "lib/base/paths.h"
#include "lib/entry/dispatch_tables.h"
#include "support/device_test.h"
#include "velkctl/call/edit_copy.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/settings/device_files.h"

namespace {

using testkit::WriteFile;
using velkctl::FileLine;
using velkctl::Holder;
using velkctl::Setting;

class SetTableTest : public testkit::DeviceTest {
  protected:
    SetTableTest() : path_(getenv("PATH")) {}
    ~SetTableTest() override { setenv("PATH", path_.c_str(), 1); }

    // The first setting with this id, which is added to the failures if there is none.
    static std::vector<Setting> SettingsWithId(uint32_t id) {
        for (const Setting& setting : velkctl::Settings()) {
            if (setting.row->id == id) {
                return {setting};
            }
        }
        ADD_FAILURE() << "the catalogue lacks id " << id;
        return {};
    }

    // Sets the setting to its example, and returns the edit copies that the library has opened.
    std::set<std::string> CopiesMadeFor(const Setting& setting) {
        std::istringstream example(setting.row->kind->Example());
        std::vector<std::string> words;
        for (std::string word; example >> word;) {
            words.push_back(word);
        }
        const velkctl::Data data = setting.row->kind->Force(words).data;
        libc().ForgetEvents();
        (void)Execute(VELK_SET, setting.row->id, setting.interface, {data.data(), data.size()});
        std::set<std::string> made;
        for (const std::string& path : libc().Texts(testkit::Call::kOpen)) {
            if (path.starts_with("/var/tmp/") && path != velk::kLockFile &&
                path != velk::kResultFile) {
                made.insert(path);
            }
        }
        return made;
    }
    static std::set<std::string> CopiesFoundFor(const Setting& setting) {
        std::set<std::string> found;
        for (const velkctl::EditCopy& copy :
             velkctl::FindEditCopies({VELK_SET, setting.row->id, setting.interface})) {
            found.insert(copy.path);
        }
        return found;
    }

  private:
    const std::string path_;
};

TEST_F(SetTableTest, EveryIdHasAPlaceInTheCatalogueWhereItIsHeld) {
    for (const velk::CommandEntry& entry : velk::kSetTable) {
        for (const Setting& setting : SettingsWithId(entry.command_id)) {
            const velkctl::HeldIn& held_in = setting.row->held_in;
            EXPECT_EQ(held_in.holder == Holder::kFile, held_in.line.file != nullptr)
                << "id " << entry.command_id << ": no file holds it";
            EXPECT_TRUE(held_in.holder != Holder::kTool || !held_in.tool.empty())
                << "id " << entry.command_id << ": no tool reads it";
            for (const FileLine& line : {held_in.line, held_in.second_line}) {
                bool is_known = line.file == nullptr;
                for (const velkctl::DeviceFile& file : velkctl::DeviceFiles()) {
                    is_known = is_known || (std::string_view(file.path) == line.file &&
                                            IsChangedBy(file, entry.command_id));
                }
                EXPECT_TRUE(is_known) << "id " << entry.command_id << ": " << line.file
                                      << " is not a file of the device";
            }
        }
    }
}

// On a device without files, tools and daemon no set has an effect, and the doctor knows why.
TEST_F(SetTableTest, EveryIdHasACheckOfTheDoctor) {
    setenv("PATH", "/tmp", 1);
    for (const velk::CommandEntry& entry : velk::kSetTable) {
        for (const Setting& setting : SettingsWithId(entry.command_id)) {
            EXPECT_FALSE(velkctl::LikelyCauses(setting).empty())
                << "the doctor has no check of id " << entry.command_id;
        }
    }
}

TEST_F(SetTableTest, EveryIdHasItsEditCopies) {
    constexpr std::string_view kEditedNames[] = {
        "interfaces", "dhclient-exit-hooks", "dhclient.conf", "dhclient-script", "root", "libvelk"};
    WriteFile("/etc/network/interfaces",
              "iface eth0 inet static\n\taddress 10.0.0.2\n\tnetmask 255.0.0.0\n"
              "\tgateway 10.0.0.1\n");
    WriteFile("/etc/dhclient-exit-hooks", "/usr/sbin/avahi-autoipd eth0\n");
    WriteFile("/etc/dhclient.conf", "request routers;\n");
    WriteFile("/sbin/dhclient-script", "make_resolv_conf\n");
    WriteFile("/var/cron/tabs/root", "0 * * * * ntpdate 10.0.0.1 > /var/libvelk/ntp.log\n");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=a\nLOCATION=b\n");
    for (const velk::CommandEntry& entry : velk::kSetTable) {
        for (const Setting& setting : SettingsWithId(entry.command_id)) {
            const std::set<std::string> made = CopiesMadeFor(setting);
            for (const std::string_view name : kEditedNames) {
                WriteFile("/var/tmp/" + std::string(name), "a\n");
            }
            EXPECT_EQ(CopiesFoundFor(setting), made) << "id " << entry.command_id;
        }
    }
}

}  // namespace
