// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// daemon_record.h - the expected gets and sets of the wireless daemon's record, from its bytes.
#ifndef TESTS_FUZZ_KIT_DAEMON_RECORD_H_
#define TESTS_FUZZ_KIT_DAEMON_RECORD_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/kit/answer.h"

namespace fuzz {

constexpr size_t kHead =
    3;  // each input begins with the command's letter, get or set, the datagram's length
constexpr size_t kHeader = 4;  // in front of a message's body
constexpr size_t kBody = 236;
constexpr size_t kMessage = kHeader + kBody;
constexpr size_t kLengthSize = 2;  // the size of the length before a text

enum class Field {
    kText,      // its length, then so many bytes
    kCode,      // a number; the data have another byte for it
    kNumber,    // a number; the data have its low byte
    kName,      // a text up to its NUL
    kRevision,  // a part of such a text
    kMac,
    kRaw
};

// A command and its field.
struct RecordRow {
    uint32_t id;
    bool can_set;
    Field field;
    size_t offset, size;
    std::string bytes;  // the data of a set; a code is at the index of its number
    char if_unknown;    // the data byte of a failed get if the number is unknown
};

extern const std::vector<RecordRow> kRecordRows;

// Returns the answer of a get if the daemon sends this record.
Answer AnswerFrom(const RecordRow& row, const std::string& body);

// True for a value that a set takes: a byte of the row's, or a text of a permitted length. The key
// in use cannot be emptied.
bool CanSet(const RecordRow& row, const std::string& body, const std::string& value);

// Returns the record with the value in its field. The rest of a former key remains after a new key;
// other texts are filled with zeros.
std::string BodyWith(const RecordRow& row, std::string body, const std::string& value);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_DAEMON_RECORD_H_
