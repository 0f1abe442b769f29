// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "support/edit_properties.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/dice.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Dice;
using testkit::kCrontab;
using testkit::kIdentityFile;
using testkit::kRounds;
using testkit::Lines;
using testkit::MakeRequest;
using testkit::Pass;
using testkit::ReadFile;
using testkit::Return;
using testkit::Split;
using testkit::WriteFile;

constexpr char kOn = 1;
constexpr char kOff = 2;

bool Holds(const std::string& line, const std::string& part) {
    return line.find(part) != std::string::npos;
}

Lines Without(Lines lines, const std::string& part) {
    std::erase_if(lines, [&](const std::string& line) { return Holds(line, part); });
    return lines;
}

// ---- crontabs

// Nothing of the time client, and no "#".
const Lines kOtherLines = {
    "30 2 * * * perl /usr/bin/web_contents_updater.pl",
    "30 01 1,31 3,5,7,10,12 * perl /usr/bin/web_contents_updater.pl",
    "0 * * * * /usr/bin/ntpd -q > /dev/null",
    "MAILTO=root",
    "",
    "\r",
    " \t ",
    "\xff\xfe\x80",
    "* * * * * true > x",
    "NTPDATE -u x > y",
    "nntpdat e",
};

// Entries with a redirection. A server, if any, is followed by another character.
const Lines kEntries = {
    "0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > /var/libvelk/ntp.log",
    "0 * * * * /usr/bin/ntpdate -u > /var/libvelk/ntp.log",
    "0 * * * * /usr/bin/ntpdate -u  > /var/libvelk/ntp.log",
    "  5 4 * * * ntpdate pool.ntp.org > log",
    "ntpdate -p 4 x >log\r",
    "\tntpdate\tx > log",
    "ntpdate>log",
    ">ntpdate ",
    " > ntpdate -u",
    "ntpdate x ntpdate y > log",
    "5 * * * * ntpdate x>log 2>&1 &",
    "\xc3\xa4 ntpdate \xc3\xa4 z > log",
    "0 ntpdate 0 > log",
};

const Lines kMarkedEntries = {
    "#0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > /var/libvelk/ntp.log",
    "##0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > /var/libvelk/ntp.log",
    "  # ntpdate x > log",
    "echo \\#; ntpdate x > log",
    "ntpdate x > log # twice",
    "# ntpdate # x > log",
    "#ntpdate > log",
};

const Lines kMarkedLines = {"# comment", "#", "##", "true # x", "#30 2 * * * web_contents_updater"};

// These end with their server, so that the line's end goes with it.
const Lines kJoiningEntries = {"0 * * * * ntpdate -u 192.168.1.10", "ntpdate xyz", "ntpdate q\r"};

struct CrontabKind {
    bool marks = true;
    bool joins = false;
};

std::string RandomCrontab(Dice& dice, CrontabKind kind, bool ended = false) {
    std::string text;
    for (size_t count = dice.Below(12); count > 0; --count) {
        const bool is_entry = dice.OneIn(3);
        std::string line = dice.OneOf(is_entry ? kEntries : kOtherLines);
        if (kind.marks && dice.OneIn(3)) {
            line = dice.OneOf(is_entry ? kMarkedEntries : kMarkedLines);
        } else if (kind.joins && dice.OneIn(4)) {
            line = dice.OneOf(kJoiningEntries);
        }
        text += (dice.OneIn(300) ? std::string(70000, ' ') + line : line) + "\n";
    }
    if (!ended && !text.empty() && dice.OneIn(4)) {
        text.pop_back();
    }
    return text;
}

// Begin with a letter or digit, hold no blank and are in no schedule.
const Lines kServers = {"10.0.0.1", "pool.ntp.org", "z",       "a#b",
                        "4>x",      "\x41\xff",     "ntpdate", std::string(511, '9')};

class CrontabPropertiesTest : public testkit::DeviceTest {
  protected:
    static std::string SetMethod(char byte) {
        EXPECT_EQ(SetNtpMethod(MakeRequest(VELK_SET, VELK_CMD_NTP, "", {&byte, 1}), nullptr), 0);
        return ReadFile(kCrontab);
    }
    static std::string SetServer(const std::string& server) {
        EXPECT_EQ(SetNtpIp(MakeRequest(VELK_SET, VELK_CMD_NTP_SERVER, "", server), nullptr), 0);
        return ReadFile(kCrontab);
    }
    static std::string SetSchedule(const std::string& data) {
        EXPECT_EQ(SetWebUp(MakeRequest(VELK_SET, VELK_CMD_WEB_UPDATE, "", data), nullptr), 0);
        return ReadFile(kCrontab);
    }
    testkit::FakeShell shell;
};

TEST_F(CrontabPropertiesTest, OffAndOnIsAsItWasWhereNothingWasMarked) {
    Dice dice(901);
    for (int round = 0; round < kRounds; ++round) {
        const std::string before = RandomCrontab(dice, {.marks = false, .joins = true}, true);
        WriteFile(kCrontab, before);
        Lines expected = Split(before);
        for (std::string& line : expected) {
            line.insert(0, Holds(line, "ntpdate") ? "#" : "");
        }
        ASSERT_EQ(Split(SetMethod(kOff)), expected) << "round " << round;
        ASSERT_EQ(SetMethod(kOn), before) << "round " << round;
        ASSERT_EQ(SetMethod(kOn), before) << "round " << round;
    }
}

TEST_F(CrontabPropertiesTest, OffTwiceIsOffOnce) {
    Dice dice(902);
    for (int round = 0; round < kRounds; ++round) {
        WriteFile(kCrontab, RandomCrontab(dice, {.marks = true, .joins = true}));
        const std::string once = SetMethod(kOff);
        ASSERT_EQ(SetMethod(kOff), once) << "round " << round;
    }
}

TEST_F(CrontabPropertiesTest, OffIsReadAsOffAndOnAsOnWhereNoLineHasTwoMarks) {
    Dice dice(903);
    for (int round = 0; round < kRounds; ++round) {
        const std::string before = RandomCrontab(dice, {.marks = false, .joins = true});
        WriteFile(kCrontab, before);
        const _velk_request get = MakeRequest(VELK_GET, VELK_CMD_NTP, "");
        char out[VELK_DATA_SIZE] = "";
        (void)SetMethod(kOff);
        EXPECT_EQ(GetNtpMethod(get, out), 0);
        ASSERT_EQ(out[0], kOff) << "round " << round;
        (void)SetMethod(kOn);
        EXPECT_EQ(GetNtpMethod(get, out), 0);
        ASSERT_EQ(out[0], Holds(before, "ntpdate") ? kOn : kOff) << "round " << round;
    }
}

TEST_F(CrontabPropertiesTest, AMethodChangesOneMarkOfAnEntryAtMostAndNoOtherLine) {
    Dice dice(904);
    for (int round = 0; round < kRounds; ++round) {
        const Lines before = Split(RandomCrontab(dice, {.marks = true, .joins = true}, true));
        std::string text;
        for (const std::string& line : before) {
            text += line + "\n";
        }
        WriteFile(kCrontab, text);
        const bool on = dice.OneIn(2);
        const Lines after = Split(SetMethod(on ? kOn : kOff));
        ASSERT_EQ(after.size(), before.size()) << "round " << round;
        for (size_t i = 0; i < before.size(); ++i) {
            std::string switched = before[i];
            const size_t mark = switched.find('#');
            if (on && mark != std::string::npos) {
                switched.erase(mark, 1);
            } else if (!on) {
                switched.insert(0, "#");
            }
            ASSERT_TRUE(after[i] == before[i] ||
                        (Holds(before[i], "ntpdate") && after[i] == switched))
                << "round " << round << ": " << after[i];
        }
    }
}

TEST_F(CrontabPropertiesTest, AServerChangesEntriesAlone) {
    Dice dice(905);
    for (int round = 0; round < kRounds; ++round) {
        const std::string before = RandomCrontab(dice, {.marks = true, .joins = false});
        WriteFile(kCrontab, before);
        const Lines old_lines = Split(before);
        const Lines new_lines = Split(SetServer(dice.OneIn(5) ? "" : dice.OneOf(kServers)));
        ASSERT_EQ(new_lines.size(), old_lines.size()) << "round " << round;
        for (size_t i = 0; i < old_lines.size(); ++i) {
            if (!Holds(old_lines[i], "ntpdate")) {
                ASSERT_EQ(new_lines[i], old_lines[i]) << "round " << round;
            }
        }
    }
}

// Also where an entry takes its line's end with it, every other line stays whole.
TEST_F(CrontabPropertiesTest, OtherLinesStayWholeAndInOrderWhenLinesAreJoined) {
    Dice dice(906);
    for (int round = 0; round < kRounds; ++round) {
        const std::string before = RandomCrontab(dice, {.marks = true, .joins = true});
        WriteFile(kCrontab, before);
        const std::string after = SetServer(dice.OneOf(kServers));
        size_t place = 0;
        for (const std::string& line : Without(Split(before), "ntpdate")) {
            place = after.find(line, place);
            ASSERT_NE(place, std::string::npos) << "round " << round << ": " << line;
            place += line.size();
        }
    }
}

TEST_F(CrontabPropertiesTest, AServerSetTwiceIsAServerSetOnce) {
    Dice dice(907);
    static const Lines kPrefixes = {"0 * * * * /usr/bin/", "  5,35 4 * * * ", "#* * * * * ", "",
                                    "# "};
    static const Lines kOldServers = {"192.168.1.10", "server.example", "q", "Xyz>x"};
    for (int round = 0; round < kRounds; ++round) {
        std::string text = RandomCrontab(dice, {.marks = true, .joins = false}, true);
        std::string expected;
        Lines lines = Without(Split(text), "ntpdate");
        const std::string& server = dice.OneOf(kServers);
        text.clear();
        for (const std::string& line : lines) {
            text.append(line).append("\n");
            expected.append(line).append("\n");
            if (dice.OneIn(2)) {
                const std::string entry = dice.OneOf(kPrefixes) + "ntpdate -u ";
                text.append(entry).append(dice.OneOf(kOldServers)).append(" > log\n");
                expected.append(entry).append(server).append(" > log\n");
            }
        }
        WriteFile(kCrontab, text);
        ASSERT_EQ(SetServer(server), expected) << "round " << round;
        ASSERT_EQ(SetServer(server), expected) << "round " << round;
    }
}

TEST_F(CrontabPropertiesTest, AServerOfTheFirstEntryIsReadBack) {
    Dice dice(908);
    for (int round = 0; round < kRounds; ++round) {
        WriteFile(kCrontab, "0 * * * * ntpdate -u qq > log\n" +
                                RandomCrontab(dice, {.marks = true, .joins = false}));
        const std::string& server = dice.OneOf(kServers);
        (void)SetServer(server);
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), out), 0);
        ASSERT_EQ(std::string(out), server) << "round " << round;
    }
}

std::string RandomSchedule(Dice& dice) {
    const char type = "\1\2\3\4\143"[dice.Below(5)];
    std::string data(1, type);
    data += static_cast<char>(1 + dice.Below(31));
    data.append(std::to_string(dice.Below(24))).append(":");
    return data.append(std::to_string(dice.Below(60)));
}

TEST_F(CrontabPropertiesTest, AScheduleIsAppendedAndKeepsTheOrderOfOtherLines) {
    Dice dice(909);
    for (int round = 0; round < kRounds; ++round) {
        const std::string before = RandomCrontab(dice, {.marks = true, .joins = true});
        const std::string data = RandomSchedule(dice);
        const bool is_two_lines = data[0] == 4 && data[1] > 28;
        WriteFile(kCrontab, before);
        const std::string after = SetSchedule(data);
        const Lines old_lines = Without(Split(before), "web_contents_updater");
        const Lines new_lines = Split(after);
        const size_t added = data[0] == 99 ? 0 : is_two_lines ? 2 : 1;
        ASSERT_EQ(new_lines.size(), old_lines.size() + added) << "round " << round;
        ASSERT_TRUE(std::equal(old_lines.begin(), old_lines.end(), new_lines.begin()))
            << "round " << round;
        for (size_t i = old_lines.size(); i < new_lines.size(); ++i) {
            ASSERT_TRUE(new_lines[i].ends_with(" perl /usr/bin/web_contents_updater.pl"))
                << "round " << round;
        }
        ASSERT_TRUE(after.empty() || after.back() == '\n') << "round " << round;
        ASSERT_EQ(SetSchedule(data), after) << "round " << round << ": twice is once";
    }
}

TEST_F(CrontabPropertiesTest, ASetScheduleIsReadBack) {
    Dice dice(910);
    for (int round = 0; round < kRounds; ++round) {
        const std::string data = RandomSchedule(dice);
        WriteFile(kCrontab, RandomCrontab(dice, {.marks = true, .joins = true}));
        (void)SetSchedule(data);
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetWebUp(MakeRequest(VELK_GET, VELK_CMD_WEB_UPDATE, ""), out), 0);
        ASSERT_EQ(out[0], data[0]) << "round " << round;
        const bool has_value = data[0] == 1 || data[0] == 3 || data[0] == 4;
        ASSERT_EQ(out[1], has_value ? data[1] : data[0] == 2 ? 1 : 99) << "round " << round;
        const bool has_time = data[0] != 1 && data[0] != 99;
        ASSERT_EQ(std::string(out + 2), has_time ? data.substr(2) : "00:00") << "round " << round;
    }
}

// ---- the settings file

const Lines kSettingLines = {
    "ADMINISTRATOR=Bob",
    "ADMINISTRATOR=",
    "LOCATION=Lab",
    "LOCATION=ADMINISTRATOR=x",
    "ADMINISTRATOR=LOCATION=y",
    " LOCATION=indented",
    "#ADMINISTRATOR=off",
    "LOCATION",
    "MODEL=a \\ 'b' \"c\" / & %s",
    "",
    "\r",
    "LOCATION=Lab\r",
    "\xff\xfe\x80",
    "Location=x",
};

std::string RandomSettings(Dice& dice) {
    std::string text;
    for (size_t count = dice.Below(10); count > 0; --count) {
        const std::string& line = dice.OneOf(kSettingLines);
        text += (dice.OneIn(300) ? line + std::string(70000, 'x') : line) + "\n";
    }
    if (!text.empty() && dice.OneIn(4)) {
        text.pop_back();
    }
    return text;
}

const Lines kValues = {
    "Alice", "",     "O'Neil & \"Co\"/IT\\", "LOCATION=",           "ADMINISTRATOR=z",
    " # ",   "%s%n", "\xc3\xa4\xff",         std::string(511, '\'')};

class SettingsPropertiesTest : public testkit::DeviceTest {
  protected:
    static std::string Set(uint32_t id, const std::string& value) {
        EXPECT_EQ(SetSettingFile(MakeRequest(VELK_SET, id, "", value), nullptr), 0);
        return ReadFile(kIdentityFile);
    }
    static std::string Get(uint32_t id) {
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, id, ""), out), 0);
        return out;
    }
    testkit::FakeShell shell;
};

TEST_F(SettingsPropertiesTest, AValueChangesTheLinesOfItsKeyAndNoOther) {
    Dice dice(1001);
    for (int round = 0; round < kRounds; ++round) {
        const bool is_location = dice.OneIn(2);
        const std::string key = is_location ? "LOCATION=" : "ADMINISTRATOR=";
        const std::string& value = dice.OneOf(kValues);
        const std::string before = RandomSettings(dice);
        WriteFile(kIdentityFile, before);
        std::string expected;
        bool is_there = false;
        for (const std::string& line : Split(before)) {
            const bool has_key = line.compare(0, key.size(), key) == 0;
            is_there = is_there || has_key;
            expected += (has_key ? key + value : line) + "\n";
        }
        expected += is_there ? "" : key + value + "\n";
        ASSERT_EQ(Set(is_location ? 3 : 2, value), expected) << "round " << round;
        ASSERT_EQ(Set(is_location ? 3 : 2, value), expected) << "round " << round;
    }
}

TEST_F(SettingsPropertiesTest, AValueIsReadBackAndTheOtherStays) {
    Dice dice(1002);
    for (int round = 0; round < kRounds; ++round) {
        const uint32_t id = dice.OneIn(2) ? 2 : 3;
        const uint32_t other = 5 - id;
        const std::string& value = dice.OneOf(kValues);
        WriteFile(kIdentityFile, RandomSettings(dice));
        const std::string kept = Get(other);
        (void)Set(id, value);
        ASSERT_EQ(Get(id), value) << "round " << round;
        ASSERT_EQ(Get(other), kept) << "round " << round;
    }
}

// ---- the files themselves, copied by the real shell

class TimedFilesTest : public testkit::DeviceTest {
  protected:
    // The edit copy is put in place; other commands are not run.
    int Set(uint32_t id, const std::string& data) {
        libc().Script(Call::kSystem, {Pass(), Pass(), Return(0), Return(0)});
        const int result = Execute(VELK_SET, id, "", data);
        libc().Reset();
        return result;
    }
};

TEST_F(TimedFilesTest, InodeOwnerAndModeSurviveEveryEdit) {
    Dice dice(1101);
    for (int round = 0; round < 25; ++round) {
        WriteFile(kCrontab, RandomCrontab(dice, {.marks = true, .joins = true}));
        WriteFile(kIdentityFile, RandomSettings(dice));
        testkit::ChangeOwnerAndMode({kCrontab, kIdentityFile}, dice);
        const auto before = testkit::IdentitiesOf({kCrontab, kIdentityFile});
        EXPECT_EQ(Set(VELK_CMD_NTP, dice.OneIn(2) ? "\x01" : "\x02"), 0);
        EXPECT_EQ(Set(VELK_CMD_NTP_SERVER, dice.OneOf(kServers)), 0);
        EXPECT_EQ(Set(VELK_CMD_WEB_UPDATE, RandomSchedule(dice)), 0);
        EXPECT_EQ(Set(VELK_CMD_LOCATION, dice.OneOf(kValues)), 0);
        const std::string location = ReadFile(kIdentityFile);
        EXPECT_EQ(Set(VELK_CMD_ADMINISTRATOR, "round " + std::to_string(round)), 0);
        EXPECT_NE(ReadFile(kIdentityFile), location) << "the real shell copied";
        ASSERT_EQ(testkit::IdentitiesOf({kCrontab, kIdentityFile}), before) << "round " << round;
        EXPECT_FALSE(testkit::Exists(testkit::kCrontabCopy));
        EXPECT_FALSE(testkit::Exists(testkit::kIdentityCopy));
    }
}

}  // namespace
