// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Laws of set, apply, import, undo and recover of velkctl, for documents of any settings made at
// random, on device files made at random.
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/dice.h"
#include "support/edit_properties.h"
#include "support/fake_daemon.h"
#include "support/fake_shell.h"
#include "support/paths.h"
#include "support/words.h"
#include "velkctl/cli/command_line.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/report/output.h"
#include <nlohmann/json.hpp>

namespace fault {
namespace {

using testing::HasSubstr;
using testkit::Dice;
using testkit::ReadFile;
using testkit::Words;
using testkit::WriteFile;
using velkctl::ExitStatus;
using velkctl::Json;
using velkctl::Setting;

constexpr char kDocument[] = "/run/document.json";

// Values of the settings that have no short list of values.
const std::map<std::string, Words> kTexts{
    {"administrator", {"O'Neil & Co/IT", "a \\ b", "somebody"}},
    {"location", {"Second floor, by the window", "x", "a/b"}},
    {"ntp-server", {"10.0.0.123", "time.example"}},
    {"web-update", {"daily 03:05", "weekly sunday 08:30", "monthly 3 00:00"}},
    {"eth0.address", {"192.168.0.10", "192.168.0.77", "192.168.0.99"}},
    {"eth1.address", {"192.168.1.10", "192.168.1.77"}},
    {"eth0.netmask", {"255.255.255.0", "255.255.0.0"}},
    {"eth1.netmask", {"255.255.255.0", "255.255.0.0"}},
    {"eth0.gateway", {"192.168.0.1", "192.168.0.2", "none"}},
    {"eth1.gateway", {"192.168.1.1", "192.168.1.2", "none"}},
    {"eth0.dns", {"10.0.0.53", "10.0.0.54"}},
    {"eth1.ssid", {"home", "office 2"}},
    {"eth1.channel", {"1", "6", "11"}},
    {"eth1.wep-key-1", {"vwxyz", "abcde"}},
    {"eth1.wep-key-2", {"vwxyz", "abcde"}},
    {"eth1.wep-key-3", {"vwxyz", "abcde"}},
    {"eth1.wep-key-4", {"vwxyz", "abcde"}},
    {"eth1.psk", {"correct horse battery", "0123456789"}},
};

// The fake port has one speed. eth1 has the list of DNS servers of eth0.
bool IsLeftOut(const Setting& setting) {
    return !setting.can_set() || setting.name() == "eth0.link-speed" ||
           setting.name() == "eth1.dns";
}

Words WordsOf(const std::string& text) {
    Words words;
    std::istringstream in(text);
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

Words ValuesOf(const Setting& setting) {
    const auto texts = kTexts.find(setting.name());
    return texts == kTexts.end() ? setting.row->kind->Values() : texts->second;
}

Json RandomValue(const Setting& setting, Dice& dice) {
    const std::string text = dice.OneOf(ValuesOf(setting));
    const bool has_words = setting.name() == "web-update";
    const velkctl::Parsed parsed =
        setting.row->kind->Parse(has_words ? WordsOf(text) : Words{text});
    EXPECT_EQ(parsed.problem, "") << setting.name() << " " << text;
    return setting.row->kind->ToJson(parsed.data);
}

// Without the method dhcp, the library does not switch the options of DHCP on.
void AddMethods(Json& settings) {
    for (const std::string interface : velkctl::kInterfaces) {
        if (settings.contains(interface + ".dhcp-dns") || settings.contains("dhcp-ntp")) {
            settings[interface + ".method"] = "dhcp";
        }
    }
}

// Returns a document of some settings, and in `others` other values for the same ones.
Json RandomDocument(Dice& dice, Json& others) {
    Json settings = Json::object();
    others = Json::object();
    const size_t rarity = 1 + dice.Below(8);
    for (const Setting& setting : velkctl::Settings()) {
        if (!IsLeftOut(setting) && dice.OneIn(rarity)) {
            settings[setting.name()] = RandomValue(setting, dice);
            others[setting.name()] = RandomValue(setting, dice);
        }
    }
    if (!dice.OneIn(6)) {
        AddMethods(settings);
        AddMethods(others);
    }
    return settings;
}

// ---- Random files ------------------------------------------------------------------------------

// A blank after an address would be read as a part of it.
void AddComments(const char* path, const char* end, Dice& dice) {
    std::string text;
    for (const std::string& line : testkit::Split(ReadFile(path))) {
        text.append(line).append(dice.OneIn(6) ? end : "\n");
        text.append(dice.OneIn(6) ? "# checked by hand\n" : "");
    }
    WriteFile(path, text);
}

constexpr const char* kFiles[]{
    testkit::kInterfacesFile, testkit::kDhcpConfigFile, testkit::kExitHooks, testkit::kClientScript,
    testkit::kResolverFile,   testkit::kIdentityFile,   testkit::kSnmpFile,  testkit::kCrontab};

void ChangeFiles(Dice& dice) {
    AddComments(testkit::kInterfacesFile, "\n\n", dice);
    AddComments(testkit::kDhcpConfigFile, " \n", dice);
    for (const char* path : kFiles) {
        testkit::ChangeOwnerAndMode({path}, dice);
    }
    if (dice.OneIn(4)) {
        EXPECT_EQ(unlink(testkit::kNtpLog), 0);
    }
}

// ---- The state of a device ---------------------------------------------------------------------

struct State {
    Files files;
    std::map<std::string, testkit::FileIdentity> identities;
    std::string wireless;

    bool HasContentsOf(const State& other) const {
        return files == other.files && wireless == other.wireless;
    }
};

// Returns each file that has other bytes.
std::string Differences(const State& state, const State& other) {
    std::string text = state.wireless == other.wireless ? "" : "wireless configuration\n";
    for (const auto& [path, bytes] : state.files) {
        if (bytes != other.files.at(path)) {
            text.append(path).append(":\n").append(bytes.value_or("(missing)\n"));
            text.append("instead of:\n").append(other.files.at(path).value_or("(missing)\n"));
        }
    }
    return text;
}

// Returns the bytes of the configuration that count: those within the lengths.
std::string TextOf(SMsgConf conf) {
    for (SWepKey& key : conf.wep_key) {
        memset(key.key + key.length, 0, sizeof(key.key) - key.length);
    }
    memset(conf.ssid + conf.ssid_length, 0, sizeof(conf.ssid) - conf.ssid_length);
    memset(conf.psk + conf.psk_length, 0, sizeof(conf.psk) - conf.psk_length);
    return {reinterpret_cast<const char*>(&conf), sizeof(conf)};
}

struct Counts {
    int documents = 0;
    int settings = 0;
    int refused = 0;  // the values of the document do not go together
    int failed = 0;   // a step failed: the library does not take the value here
    int nothing = 0;  // all of them are the present ones
    int undone = 0;
    int exported = 0;
    int replaced = 0;
};

class ChangeLaws : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        shell_.RunsForReal("sudo sed", PathWithHarmlessSudo());
        shell_.Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
        shell_.Prints("sudo ethtool", {"\tSpeed: 100Mb/s\n\tDuplex: Full\n"});
        shell_.Prints("ifconfig", {"eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10\n"});
    }
    void TearDown() override {
        daemon_.reset();
        DeviceTest::TearDown();
    }

    void MakeDevice(unsigned seed) {
        Dice dice(seed);
        daemon_.reset();
        testkit::EmptyDevice();
        WriteFiles({});
        daemon_.emplace();
        daemon_->SetConf(WirelessConfiguration());
        const Words methods{"static", "dhcp"};
        const Words words{"set", "eth0.method=" + dice.OneOf(methods),
                          "eth1.method=" + dice.OneOf(methods), "--no-journal", "--force"};
        EXPECT_EQ(Run(words), ExitStatus::kDone) << error_;
        ChangeFiles(dice);
    }

    ExitStatus Run(const Words& arguments) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        velkctl::Report report(velkctl::RequestedForm(arguments));
        const ExitStatus status = velkctl::RunCommandLine(arguments, report);
        report.Finish(status);
        (void)velkctl::FinishPrinting();
        output_ = testing::internal::GetCapturedStdout();
        error_ = testing::internal::GetCapturedStderr();
        libc().ForgetEvents();
        return status;
    }

    ExitStatus Change(const char* verb, const Json& settings) {
        WriteFile(kDocument,
                  velkctl::DocumentText(velkctl::MakeDocument(settings, Json::object())));
        return Run({verb, kDocument, "--restart=never"});
    }

    Json Export() {
        EXPECT_EQ(Run({"export", "--include-secrets"}), ExitStatus::kDone) << error_;
        return Json::parse(output_).at("settings");
    }

    State StateNow() {
        State state{ReadTargets(), {}, {}};
        state.files.erase(testkit::kOldAddressFile);  // a note of the library in /tmp
        for (const auto& [path, text] : state.files) {
            if (text) {
                state.identities[path] = testkit::IdentityOf(path);
            }
        }
        // The daemon reads its messages in order: after an answer it has stored all.
        EXPECT_EQ(Run({"get", "eth1.ssid"}), ExitStatus::kDone) << error_;
        state.wireless = TextOf(daemon_->conf());
        return state;
    }

    void ExpectState(const State& expected, const char* law) {
        const State now = StateNow();
        EXPECT_TRUE(now.HasContentsOf(expected)) << law << "\n" << Differences(now, expected);
    }

    // Each seed is one document on one device.
    void CheckDocuments(unsigned first, unsigned count);
    void CheckLaws(unsigned seed);
    void CheckTwice(const Json& settings);
    void CheckUndo(const State& before);
    void CheckExport(const Json& others);
    void CheckReplaced(unsigned seed, const Json& settings, const Json& others);
    static size_t CountEntries() { return velkctl::ReadJournal().entries.size(); }

    Counts counts_;
    std::string output_;
    std::string error_;

  private:
    testkit::FakeShell shell_;
    std::optional<testkit::FakeDaemon> daemon_;
};

void ChangeLaws::CheckLaws(unsigned seed) {
    Dice dice(seed);
    Json others;
    const Json settings = RandomDocument(dice, others);
    MakeDevice(seed);
    const State before = StateNow();
    const ExitStatus status = Change("apply", settings);
    ++counts_.documents;
    counts_.settings += static_cast<int>(settings.size());
    if (status == ExitStatus::kInvalid) {
        ++counts_.refused;
        ExpectState(before, "a refused document changes nothing");
        return;
    }
    if (status == ExitStatus::kFailed) {
        ++counts_.failed;
        EXPECT_THAT(error_, HasSubstr("all settings are as before"));
        ExpectState(before, "a change that failed changes nothing");
        return;
    }
    ASSERT_EQ(status, ExitStatus::kDone) << error_;
    if (output_ == "nothing to change\n") {
        ++counts_.nothing;
        ExpectState(before, "nothing to change");
        return;
    }
    CheckTwice(settings);
    CheckUndo(before);
    CheckExport(others);
    CheckReplaced(seed, settings, others);
}

// A setting that cannot be read is set again, as nobody knows that it has its value.
void ChangeLaws::CheckTwice(const Json& settings) {
    const State after = StateNow();
    const size_t entries = CountEntries();
    EXPECT_EQ(Change("apply", settings), ExitStatus::kDone) << error_;
    const std::string output = output_;
    ExpectState(after, "applied twice is applied once");
    if (!settings.contains("eth0.dhcp-notice")) {
        EXPECT_EQ(output, "nothing to change\n");
    }
    EXPECT_EQ(CountEntries(), entries);
    EXPECT_EQ(Run({"recover"}), ExitStatus::kDone);
    EXPECT_EQ(output_, "nothing to recover\n");
    ExpectState(after, "recover of a finished change is nothing");
}

void ChangeLaws::CheckUndo(const State& before) {
    const State after = StateNow();
    EXPECT_EQ(Run({"undo"}), ExitStatus::kDone) << error_;
    ExpectState(before, "undo of apply");
    for (const auto& [path, old] : before.identities) {
        const testkit::FileIdentity now = testkit::IdentityOf(path);
        EXPECT_EQ(now.mode, old.mode) << path;
        EXPECT_EQ(now.owner, old.owner) << path;
        EXPECT_EQ(now.group, old.group) << path;
        if (after.identities.contains(path)) {
            EXPECT_EQ(now.inode, after.identities.at(path).inode) << path;
        }
    }
    EXPECT_EQ(Run({"undo"}), ExitStatus::kDone) << error_;
    ExpectState(after, "undo of undo");
    ++counts_.undone;
}

void ChangeLaws::CheckExport(const Json& others) {
    const State after = StateNow();
    const size_t entries = CountEntries();
    const Json exported = Export();
    EXPECT_EQ(Change("import", exported), ExitStatus::kDone) << error_;
    EXPECT_EQ(output_, "nothing to change\n");
    EXPECT_EQ(CountEntries(), entries);
    ExpectState(after, "import of an export is nothing");
    if (Change("apply", others) == ExitStatus::kDone) {
        EXPECT_EQ(Change("import", exported), ExitStatus::kDone) << error_;
        EXPECT_EQ(Export(), exported);
        ++counts_.exported;
    }
}

// Keeps the settings of the document: a set of the method switches others.
Json SelectedBy(const Json& document, const Json& exported) {
    Json selected = Json::object();
    for (const auto& [name, value] : document.items()) {
        selected[name] = exported.contains(name) ? exported.at(name) : Json();
    }
    return selected;
}

// The first document leaves no trace in the settings of the second.
void ChangeLaws::CheckReplaced(unsigned seed, const Json& settings, const Json& others) {
    MakeDevice(seed);
    (void)Change("apply", settings);
    if (Change("apply", others) != ExitStatus::kDone) {
        return;
    }
    const Json both = SelectedBy(others, Export());
    MakeDevice(seed);
    if (Change("apply", others) == ExitStatus::kDone) {
        EXPECT_EQ(SelectedBy(others, Export()), both);
        ++counts_.replaced;
    }
}

void ChangeLaws::CheckDocuments(unsigned first, unsigned count) {
    for (unsigned seed = first; seed < first + count && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        CheckLaws(seed);
    }
    printf("| %d | %d | %d | %d | %d | %d | %d | %d |\n", counts_.documents, counts_.settings,
           counts_.refused, counts_.failed, counts_.nothing, counts_.undone, counts_.exported,
           counts_.replaced);
}

TEST_F(ChangeLaws, HoldForRandomDocuments) {
    CheckDocuments(1, 12);
}

// It takes long: only scripts/test --thorough runs it.
TEST_F(ChangeLaws, DISABLED_HoldForManyRandomDocuments) {
    CheckDocuments(100, 400);
}

}  // namespace
}  // namespace fault
