// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// daemon_record.cpp - the expected gets and sets of the wireless daemon's record, from its bytes.
#include "fuzz/kit/daemon_record.h"

#include "velk.h"

namespace fuzz {

const std::vector<RecordRow> kRecordRows = {
    {VELK_CMD_STANDARDS_ENABLED, true, Field::kCode, 36, 2, "\2\3", 3},
    {VELK_CMD_SERVICE_SET, true, Field::kCode, 34, 2, "\2\1", 0},
    {VELK_CMD_SSID, true, Field::kText, 0, 34, "", 0},
    {VELK_CMD_CHANNEL, true, Field::kNumber, 38, 2, "\1\2\3\4\5\6\7\10\11\12\13\14\15", 0},
    {VELK_CMD_ENCRYPTION, true, Field::kCode, 42, 2, "\1\2\3\4", 0},
    {VELK_CMD_AUTHENTICATION, true, Field::kCode, 40, 2, "\1\2\3\4", 0},
    {VELK_CMD_WEP_KEY_1, true, Field::kText, 48, 30, "", 0},
    {VELK_CMD_WEP_KEY_2, true, Field::kText, 78, 30, "", 0},
    {VELK_CMD_WEP_KEY_3, true, Field::kText, 108, 30, "", 0},
    {VELK_CMD_WEP_KEY_4, true, Field::kText, 138, 30, "", 0},
    {VELK_CMD_WEP_DEFAULT_KEY, true, Field::kNumber, 44, 2, "\1\2\3\4", 0},
    {VELK_CMD_PSK, true, Field::kText, 168, 66, "", 0},
    {VELK_CMD_HARDWARE_VERSION, false, Field::kRevision, 0, 64, "", 0},
    {VELK_CMD_SOFTWARE_VERSION, false, Field::kName, 64, 32, "", 0},
    {VELK_CMD_STANDARD, false, Field::kCode, 152, 2, "\1\2\3", 3},
    {VELK_CMD_REGION, false, Field::kCode, 96, 2, "\1\2\3", 1},
    {VELK_CMD_RATE, false, Field::kRaw, 156, 4, "", 0},
    {VELK_CMD_ACCESS_POINT, false, Field::kMac, 142, 6, "", 0},
    {VELK_CMD_SIGNAL, false, Field::kRaw, 160, 4, "", 0},
};

namespace {

// A number of the record; the least byte comes first.
size_t NumberIn(const std::string& field) {
    return static_cast<unsigned char>(field[0]) + 256U * static_cast<unsigned char>(field[1]);
}

std::string NumberText(size_t number) {
    return {static_cast<char>(number & 0xFF), static_cast<char>(number / 256)};
}

bool IsWepKey(const RecordRow& row) {
    return row.id >= VELK_CMD_WEP_KEY_1 && row.id <= VELK_CMD_WEP_KEY_4;
}

// With WEP the record names the key in use.
bool IsKeyInUse(const RecordRow& row, const std::string& body) {
    constexpr size_t kWep = 1;
    constexpr size_t kEncryptionAt = 42;
    constexpr size_t kDefaultKeyAt = 44;
    return NumberIn(body.substr(kEncryptionAt)) == kWep &&
           NumberIn(body.substr(kDefaultKeyAt)) == row.id - VELK_CMD_WEP_KEY_1 + 1;
}

Answer TextFrom(const std::string& field) {
    const size_t length = NumberIn(field);
    if (length > field.size() - kLengthSize) {
        return {false, ""};
    }
    return {true, field.substr(kLengthSize, length)};
}

Answer CodeFrom(const RecordRow& row, const std::string& field) {
    const size_t number = NumberIn(field);
    if (number >= row.bytes.size()) {
        return {false, {row.if_unknown}};
    }
    return {true, {row.bytes[number]}};
}

std::string NameIn(const std::string& field) {
    return field.substr(0, field.find('\0'));
}

std::string RevisionIn(const std::string& product) {
    const size_t key = product.find("Rev= ");
    return key == std::string::npos ? "" : product.substr(key + 5);
}

std::string MacIn(const std::string& field) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : field) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte / 16], kDigits[byte % 16]};
    }
    return text;
}

}  // namespace

Answer AnswerFrom(const RecordRow& row, const std::string& body) {
    const std::string field = body.substr(row.offset, row.size);
    switch (row.field) {
        case Field::kText:
            return TextFrom(field);
        case Field::kCode:
            return CodeFrom(row, field);
        case Field::kNumber:
            return {true, {field[0]}};
        case Field::kName:
            return {true, NameIn(field)};
        case Field::kRevision:
            return {true, RevisionIn(NameIn(field))};
        case Field::kMac:
            return {true, MacIn(field)};
        case Field::kRaw:
            return {true, field};
    }
    return {};
}

bool CanSet(const RecordRow& row, const std::string& body, const std::string& value) {
    if (row.field != Field::kText) {
        return row.bytes.find(value) != std::string::npos;
    }
    if (!IsWepKey(row)) {
        return value.size() <= row.size - kLengthSize;
    }
    if (value.empty()) {
        return !IsKeyInUse(row, body);
    }
    return value.size() == 5 || value.size() == 10 || value.size() == 13 || value.size() == 26;
}

std::string BodyWith(const RecordRow& row, std::string body, const std::string& value) {
    if (row.field == Field::kCode) {
        return body.replace(row.offset, row.size, NumberText(row.bytes.find(value)));
    }
    if (row.field == Field::kNumber) {
        return body.replace(row.offset, row.size, NumberText(static_cast<size_t>(value[0])));
    }
    const size_t text = row.offset + kLengthSize;
    if (!IsWepKey(row)) {
        const size_t size = row.size - kLengthSize;
        body.replace(text, size, size, '\0');
    }
    body.replace(text, value.size(), value);
    return body.replace(row.offset, kLengthSize, NumberText(value.size()));
}

}  // namespace fuzz
