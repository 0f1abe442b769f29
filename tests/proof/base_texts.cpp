// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// base_texts.cpp - proofs about lib/base/comment_switch.h, data_area.h and numbers.h, and about the
// texts of numbers.
#include <limits>

#include "lib/base/comment_switch.cpp"
#include "lib/base/data_area.cpp"
#include "lib/base/numbers.h"
#include "tests/proof/proof.h"

using namespace velk;

namespace {

// `ParseLeadingNumber()` by the definition of a decimal number.
template <typename Number, size_t kMost>
void ProveLeadingNumber() {
    const std::string_view text = AnyText<kMost>();
    size_t end = 0;
    const auto number = ParseLeadingNumber<Number>(text, end);
    const bool is_negative = !text.empty() && text[0] == '-';
    size_t digits = is_negative ? 1 : 0;
    int32_t value = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        value = value * 10 + (text[digits] - '0');
        ++digits;
    }
    value = is_negative ? -value : value;
    const bool has_digits = digits > (is_negative ? 1U : 0U);
    const bool fits =
        value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
    proof_claim(number.has_value() == (has_digits && fits),
                "a value exactly for a number that fits");
    proof_claim(!number || *number == value, "the value is the number");
    proof_claim(end == (has_digits ? digits : 0), "the end is after the last digit");
    proof_reached(number == 0 && text[0] == '-', "minus zero");
    proof_reached(has_digits && digits < text.size(), "a number before other bytes");
    proof_reached(number == -99 && fits, "a negative number");
}

}  // namespace

PROOF(comment_switch, 10, "a line of up to 6 bytes, a position in it or npos, on and off") {
    const std::string_view line = AnyText<6>();
    const size_t position =
        proof_number(1) == 1 ? std::string_view::npos : proof_number(line.size());
    const bool on = proof_number(1) == 1;
    const size_t mark = line.find('#');
    const std::string switched = SwitchLine(line, position, on);
    const bool was_off = IsCommentedOut(line, position);
    const size_t any = proof_number(6);
    proof_claim(was_off || any >= line.size() || any > position || line[any] != '#',
                "a # at or before the position comments out");
    proof_claim(!was_off || (mark < line.size() && mark <= position), "nothing else does");
    if (on == !was_off) {
        proof_claim(switched.size() == line.size(), "a line in that state keeps its length");
        proof_claim(any >= line.size() || switched[any] == line[any],
                    "a line in that state is unchanged");
    } else if (on) {
        proof_claim(switched.size() + 1 == line.size(), "on deletes one byte");
        proof_claim(any >= switched.size() || switched[any] == line[any < mark ? any : any + 1],
                    "on deletes the first #");
        proof_reached(mark > 0 && position < line.size(), "a # within the line");
    } else {
        proof_claim(switched.size() == line.size() + 1 && switched[0] == '#',
                    "off puts a # into column one");
        proof_claim(any >= line.size() || switched[any + 1] == line[any], "off keeps the rest");
        proof_reached(line.size() == 6 && mark < 6, "a # after the position");
    }
    proof_claim(position == std::string_view::npos ||
                    IsCommentedOut(switched, on ? position : position + 1) == !on ||
                    (on && line.find('#', mark + 1) <= position + 1),
                "the line is in the asked state, unless it has a second #");
    proof_reached(on == !was_off && line.empty(), "an empty line that is on");
}

PROOF(field_text, 10, "a field of 8 bytes, with and without NUL") {
    char field[8];
    for (char& c : field) {
        c = static_cast<char>(proof_number(255));
    }
    const std::string_view text = FieldText(field);
    proof_claim(text.data() == field && text.size() <= sizeof(field), "the text is in the field");
    proof_claim(text.size() == sizeof(field) || field[text.size()] == '\0',
                "the text ends at a NUL or with the field");
    const size_t any = proof_number(7);
    proof_claim(any >= text.size() || text[any] != '\0', "the text contains no NUL");
    proof_reached(text.size() == sizeof(field), "a field without NUL");
    proof_reached(text.empty(), "an empty field");
}

PROOF(put_field_text, 10, "a text of up to 9 bytes into a field of 5") {
    const std::string_view text = AnyText<9>();
    struct {
        char field[5];
        char after;
    } out = {{'x', 'x', 'x', 'x', 'x'}, 'y'};
    PutFieldText(out.field, text);
    const size_t length = text.size() < 4 ? text.size() : 4;
    const size_t any = proof_number(4);
    proof_claim(out.field[length] == '\0', "a NUL follows the text");
    proof_claim(any >= length || out.field[any] == text[any], "the text is copied up to the room");
    proof_claim(out.after == 'y', "the byte after the field is unchanged");
    proof_reached(text.size() == 9, "a text that is too long");
    proof_reached(text.size() == 3, "a text that is shorter than the field");
}

PROOF(put_mac, 40, "all 2^48 addresses") {
    const uint64_t address = proof_number((uint64_t{1} << 48) - 1);
    uint8_t mac[6];
    for (size_t i = 0; i < sizeof(mac); ++i) {
        mac[i] = static_cast<uint8_t>(address >> (8 * i));
    }
    char* out = proof_bytes(13);
    PutMac(out, mac);
    proof_claim(out[12] == '\0', "a NUL follows 12 digits");
    const size_t any = proof_number(11);
    const unsigned digit = any % 2 == 0 ? mac[any / 2] >> 4 : mac[any / 2] & 15;
    proof_claim(out[any] == "0123456789ABCDEF"[digit], "each digit is upper-case hexadecimal");
    proof_reached(out[0] == 'F' && out[11] == 'A', "an address of letters");
}

PROOF(leading_number, 7, "an int in a text of up to 4 bytes") {
    ProveLeadingNumber<int, 4>();
}

// The same code with a smaller type, because the multiplications of ten digits are too much for the
// prover.
PROOF(leading_small_number, 8, "an int8_t in a text of up to 5 bytes") {
    ProveLeadingNumber<int8_t, 5>();
    const std::string_view text = AnyText<4>();
    const auto number = ParseLeadingNumber<int8_t>(text);
    proof_reached(number == INT8_MIN, "the least number");
    proof_reached(!number && text.size() == 3 && text[0] == '1' && text[1] == '2' && text[2] == '8',
                  "a number that is too large");
}

PROOF(leading_hexadecimal, 8, "a hexadecimal uint16_t in a text of up to 5 bytes") {
    const std::string_view text = AnyText<5>();
    size_t end = 0;
    const auto number = ParseLeadingNumber<uint16_t>(text, end, 16);
    uint32_t value = 0;
    size_t digits = 0;
    for (; digits < text.size(); ++digits) {
        const char c = text[digits];
        const char low = static_cast<char>(c | 0x20);
        if (c >= '0' && c <= '9') {
            value = value * 16 + static_cast<uint32_t>(c - '0');
        } else if (low >= 'a' && low <= 'f') {
            value = value * 16 + static_cast<uint32_t>(low - 'a' + 10);
        } else {
            break;
        }
    }
    proof_claim(number.has_value() == (digits > 0 && value <= UINT16_MAX),
                "a value exactly for a number that fits");
    proof_claim(!number || *number == value, "the value is the number");
    proof_claim(end == digits, "the end is after the last digit");
    proof_reached(number == UINT16_MAX, "the largest number");
    proof_reached(digits == 5 && number == 1U, "leading zeros");
}
