// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edits_fuzz.cpp - every set that edits a file, on any file: only its own lines change. On files in
// the device's usual form, the set is read back, and a second set changes nothing.
//
// An input is the row's letter, "0" or "1" for the interface, the value up to the end of the line,
// then the files' texts with "----" between them. The bytes of values that are no text are digits:
// "4" is the byte 4, "O" is 31.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/edit_files.h"
#include "fuzz/kit/edit_rows.h"
#include "fuzz/kit/fuzz_device.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/usual_files.h"

namespace fuzz {
namespace {

char Byte(char digit) {
    return static_cast<char>(digit - '0');
}

// Returns the slots for servers between commas, each cut to its slot.
std::string SlotsFor(std::string_view text) {
    std::string slots;
    for (size_t i = 0; i < kSlots; ++i) {
        const std::string server(text.substr(0, text.find(',')));
        text.remove_prefix(std::min(server.size() + 1, text.size()));
        std::string slot = TextIn(server).substr(0, kSlotSize);
        slot.resize(kSlotSize);
        slots += slot;
    }
    return slots;
}

// Returns type, value and time; "9" is the type of no schedule.
std::string ScheduleFor(std::string text) {
    constexpr size_t kLongestTime = 100;
    text.resize(std::max<size_t>(text.size(), 2), '0');
    const char type = text[0] == '9' ? char{VELK_SCHEDULE_NONE} : Byte(text[0]);
    return std::string{type, Byte(text[1])} + text.substr(2, kLongestTime);
}

// Returns the request's data for a value in the input's spelling.
std::string DataFor(Value value, const std::string& text) {
    constexpr size_t kLongestText = 400;
    switch (value) {
        case Value::kText:
            return TextIn(text).substr(0, kLongestText);
        case Value::kByte:
            return {text.empty() ? '\0' : Byte(text[0])};
        case Value::kServers:
            return SlotsFor(text);
        case Value::kSchedule:
            return ScheduleFor(text);
    }
    return "";
}

class Edit {
  public:
    Edit(const EditRow& row, const std::string& interface, const std::string& data)
        : row_(row), setting_{row.id, row.has_interface ? interface : "", data} {}

    void Run(const std::vector<std::string>& texts);

  private:
    int Set(Turn& turn) {
        return turn.Execute(VELK_SET, setting_.id, setting_.interface, setting_.data);
    }
    std::vector<std::string> Read() const;
    void CheckReadBack(Turn& turn);

    const EditRow& row_;
    const Setting setting_;
};

std::vector<std::string> Edit::Read() const {
    std::vector<std::string> texts;
    for (const EditedFile& file : row_.files) {
        texts.push_back(testkit::ReadFile(file.path));
    }
    return texts;
}

void Edit::CheckReadBack(Turn& turn) {
    const std::string& data = setting_.data;
    Check(turn.Execute(VELK_GET, setting_.id, setting_.interface) == LIB_VELK_SUCCESS,
          "a set can be read");
    Check(testkit::Data(turn.response, data.size()) == data, "a get returns the value of the set");
    Check(turn.response.data[data.size()] == '\0', "and no more");
}

void Edit::Run(const std::vector<std::string>& texts) {
    Turn turn;
    for (size_t i = 0; i < row_.files.size(); ++i) {
        testkit::WriteFile(row_.files[i].path, i < texts.size() ? texts[i] : "");
    }
    const std::vector<std::string> before = Read();
    const int result = Set(turn);
    const std::vector<std::string> after = Read();
    if (result != LIB_VELK_SUCCESS) {
        Check(after == before, "a set that fails changes nothing");
        return;
    }
    for (size_t i = 0; i < row_.files.size(); ++i) {
        CheckEdit(row_.files[i], setting_, before[i], after[i]);
        const std::string copy = CopyOf(row_.files[i]);
        Check(copy.empty() || !testkit::Exists(copy), "the edit copy is gone");
    }
    if (!IsUsual(setting_, before)) {
        return;
    }
    if (row_.can_get) {
        CheckReadBack(turn);
    }
    Check(Set(turn) == LIB_VELK_SUCCESS && Read() == after, "a second set changes nothing");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.size() < 3) {
        return 0;
    }
    const size_t letter = static_cast<unsigned char>(input[0]);
    const fuzz::EditRow& row = fuzz::kEditRows[(letter - 'a') % fuzz::kEditRows.size()];
    const std::string interface = input[1] == '1' ? "eth1" : "eth0";
    input.remove_prefix(2);
    const std::string value = fuzz::TakeLine(input);
    fuzz::Edit(row, interface, fuzz::DataFor(row.value, value)).Run(fuzz::Sections(input));
    return 0;
}
