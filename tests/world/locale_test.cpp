// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// An administrator's text that a tool reads in an encoding with characters of several bytes.
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace world {
namespace {
using testkit::Call;
using testkit::kIdentityFile;
using testkit::kSnmpFile;

constexpr char kSnmpBefore[] = "syscontact Robin\nsyslocation Cellar\n";
constexpr char kPlanted[] = "/tmp/owned";
constexpr char kLocales[] = "/run/locales";

struct Encoding {
    const char* locale;
    const char* source;   // the source for localedef(1); null for a locale of every C library
    const char* charmap;  // null as well
    bool is_safe;
};

constexpr Encoding kEncodings[] = {
    {"C", nullptr, nullptr, true},
    {"C.UTF-8", nullptr, nullptr, true},
    {"ja_JP.SJIS", "ja_JP", "SHIFT_JIS", false},
    {"zh_CN.GBK", "zh_CN", "GBK", false},
    {"zh_TW.BIG5", "zh_TW", "BIG5", false},
};

std::string EveryByte() {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '\n') {
            bytes += static_cast<char>(byte);
        }
    }
    return bytes;
}

bool IsAscii(const std::string& text) {
    return text.find_first_not_of(EveryByte().substr(0, 126)) == std::string::npos;
}

// Tools find the locale by this environment. The library reads it, too.
class LocaleScope {
  public:
    explicit LocaleScope(const char* locale)
        : path_("LOCPATH", kLocales), name_("LC_ALL", locale) {}

  private:
    class Variable {
      public:
        Variable(const char* name, const char* value) : name_(name) {
            if (const char* before = getenv(name); before != nullptr) {
                before_ = before;
            }
            setenv(name, value, 1);
        }
        ~Variable() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
        Variable(const Variable&) = delete;
        Variable& operator=(const Variable&) = delete;

      private:
        const char* const name_;
        std::optional<std::string> before_;
    };

    const Variable path_;
    const Variable name_;
};

class LocaleTest : public testkit::DeviceTest, public testing::WithParamInterface<Encoding> {
  protected:
    void SetUp() override {
        if (GetParam().charmap == nullptr) {
            return;
        }
        std::filesystem::create_directories(kLocales);
        const std::string line = std::string("localedef -i ") + GetParam().source + " -f " +
                                 GetParam().charmap + " " + kLocales + "/" + GetParam().locale +
                                 " >/dev/null 2>&1";
        const testkit::Unrecorded ours;
        (void)!system(line.c_str());
        const std::string question = std::string("test \"$(LOCPATH=") + kLocales +
                                     " LC_ALL=" + GetParam().locale +
                                     " locale charmap)\" = " + GetParam().charmap;
        ASSERT_EQ(system(question.c_str()), 0) << "the locale was not made";
    }

    // Sets the administrator. Only the SNMP line for sed(1) runs, without sudo(8).
    void SetAdministrator(const std::string& value) {
        testkit::WriteFile(kIdentityFile, "ADMINISTRATOR=\n");
        testkit::WriteFile(kSnmpFile, kSnmpBefore);
        libc().ForgetEvents();
        libc().ScriptAlways(Call::kSystem, testkit::Return(0));
        const LocaleScope scope(GetParam().locale);
        EXPECT_EQ(Execute(VELK_SET, VELK_CMD_ADMINISTRATOR, "", value), 0);
        const std::string sudo = "sudo ";
        for (const std::string& line : libc().Commands()) {
            if (line.starts_with("sudo sed")) {
                const testkit::Unrecorded ours;
                (void)!system((line.substr(sudo.size()) + " 2>/dev/null").c_str());
            }
        }
    }

    // The text arrives complete, or the library does not pass it on and nothing happens.
    void ExpectNoCommand(const std::string& value) {
        SetAdministrator(value);
        const bool is_handed_on = GetParam().is_safe || IsAscii(value);
        const std::string expected =
            is_handed_on ? "syscontact " + value + "\nsyslocation Cellar\n" : kSnmpBefore;
        EXPECT_EQ(testkit::ReadFile(kSnmpFile), expected) << testing::PrintToString(value);
        EXPECT_FALSE(testkit::Exists(kPlanted)) << testing::PrintToString(value);
    }
};

TEST_P(LocaleTest, NoByteBecomesACommand) {
    ExpectNoCommand(EveryByte());
    for (const char byte : EveryByte()) {
        ExpectNoCommand(std::string(1, byte));
    }
}

TEST_P(LocaleTest, NoPairOfBytesBecomesACommand) {
    for (const char first : EveryByte()) {
        std::string pairs;
        for (const char second : EveryByte()) {
            pairs += {first, second};
        }
        ExpectNoCommand(pairs);
    }
}

// The byte in front of the slash may take its backslash; the bytes after it would be flags of the
// command.
TEST_P(LocaleTest, NoByteInFrontOfASlashEndsTheCommandOfSed) {
    for (const char byte : EveryByte()) {
        ExpectNoCommand(std::string(";touch /tmp/owned #") + byte + "/e;#");
        ExpectNoCommand(std::string("x") + byte + "\\nrwcommunity private");
    }
}

TEST_P(LocaleTest, ALineThatIsNotRunIsLogged) {
    SetAdministrator("caf\xe9");
    if (GetParam().is_safe) {
        EXPECT_THAT(libc().Logs(), testing::Not(testing::Contains(testing::HasSubstr("SNMP"))));
        return;
    }
    EXPECT_THAT(libc().Commands(), testing::Each(testing::Not(testing::HasSubstr("snmpd"))));
    EXPECT_THAT(libc().Logs(), testing::Contains("SetSettingFile no SNMP line in the locale " +
                                                 std::string(GetParam().locale)));
}

std::string NameOf(const testing::TestParamInfo<Encoding>& encoding) {
    std::string name = encoding.param.locale;
    std::erase_if(name, [](char letter) { return isalnum(letter) == 0; });
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, LocaleTest, testing::ValuesIn(kEncodings), NameOf);

}  // namespace
}  // namespace world
