// data_area.h - reads and writes the fixed byte fields of requests and records within their bounds.
#ifndef VELK_FRAME_DATA_AREA_H_
#define VELK_FRAME_DATA_AREA_H_

#include <cstddef>
#include <cstring>
#include <string_view>

namespace velk {

// The text in a fixed field: up to its NUL, or the whole field when it holds none.
template <size_t kSize>
std::string_view FieldText(const char (&field)[kSize]) {
    return {field, strnlen(field, kSize)};
}

// Copies a text into a fixed field, cut so that a NUL always follows it.
template <size_t kSize>
void PutFieldText(char (&field)[kSize], std::string_view text) {
    const size_t length = text.copy(field, kSize - 1);
    field[length] = '\0';
}

}  // namespace velk

#endif  // VELK_FRAME_DATA_AREA_H_
