// file_io.h - read(2) and write(2) without their interruptions.
#ifndef VELK_BASE_FILE_IO_H_
#define VELK_BASE_FILE_IO_H_

#include <cstddef>
#include <string_view>

#include <sys/types.h>

namespace velk {

// Reads what is there, at most `size` bytes, as read(2) does but never interrupted by a signal.
ssize_t ReadSome(int fd, char* buffer, size_t size);

// Writes the whole text; false, with errno saying why, when that fails.
bool WriteAll(int fd, std::string_view text);

}  // namespace velk

#endif  // VELK_BASE_FILE_IO_H_
