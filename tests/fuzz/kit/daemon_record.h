// daemon_record.h - what gets and sets make of the wireless daemon's record, told from its bytes.
#ifndef TESTS_FUZZ_KIT_DAEMON_RECORD_H_
#define TESTS_FUZZ_KIT_DAEMON_RECORD_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fuzz {

constexpr size_t kHead = 3;  // of an input: the command's letter, get or set, the datagram's length
constexpr size_t kHeader = 4;  // in front of a message's body
constexpr size_t kBody = 236;
constexpr size_t kMessage = kHeader + kBody;
constexpr size_t kLengthSize = 2;  // of the length in front of a text

enum class Field {
    kText,      // its length, then so many bytes
    kCode,      // a number that a byte of its own stands for
    kNumber,    // a number whose low byte is given
    kName,      // a text up to its NUL
    kRevision,  // a part of such a text
    kMac,
    kRaw
};

// A command and the field that it is about.
struct Row {
    uint32_t id;
    bool can_set;
    Field field;
    size_t offset, size;
    std::string bytes;  // that a set takes; for a code, at the place of its number
    char if_unknown;    // the byte beside the failure of a number without one
};

extern const std::vector<Row> kRows;

struct Answer {
    bool succeeds;
    std::string bytes;  // what the data begin with; the others are zero
};

// What a get gives when the daemon sends this record.
Answer AnswerFrom(const Row& row, const std::string& body);

std::string WithoutField(const Row& row, std::string body);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_DAEMON_RECORD_H_
