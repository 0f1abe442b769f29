// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// floor.h - minimal implementations of tasks, written by hand.
#ifndef BENCH_FLOOR_H_
#define BENCH_FLOOR_H_

#include <string>
#include <string_view>

namespace bench {

// Reads a small file and searches `start`, then `key` after it. Copies the rest of that line after
// the key to `out`. Reads an empty file again for 50 ms, as a set may have just emptied it. Ends
// the program if the key is not found.
void FindByHand(const char* path, std::string_view start, std::string_view key, char* out);

// Does the same for a file of any size, in blocks of 64 KB that memchr(3) splits into lines.
// `start` must begin a line.
void CutByHand(const char* path, std::string_view start, std::string_view key, char* out);

// Copies a file into a new one, block by block.
void CopyByHand(const char* from, const char* to);

// Truncates a file and writes a text to it.
void WriteByHand(const char* path, std::string_view text);

// Runs a shell line with system(3).
void RunLine(const std::string& line);

// Performs the minimal steps of an edit: the copy, and the two shell lines that put it in place.
void EditByHand(const std::string& path);

// Opens, locks, unlocks and closes a file.
void LockByHand(const char* path);

// Prints a message and ends the program: results of a failed task are not valid.
[[noreturn]] void GiveUp(const std::string& message);

}  // namespace bench

#endif  // BENCH_FLOOR_H_
