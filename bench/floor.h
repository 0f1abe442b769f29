// floor.h - the least that has to be done for a task, written by hand.
#ifndef BENCH_FLOOR_H_
#define BENCH_FLOOR_H_

#include <string>
#include <string_view>

namespace bench {

// Opens, reads, closes a small file and looks for `start`, then for `key` behind it. Copies what
// follows the key on its line into `out`; does not return when there is none.
void FindByHand(const char* path, std::string_view start, std::string_view key, char* out);

// The same in a file of any size: a block of 64 KB, cut into lines with memchr(3). `start` begins a
// line.
void CutByHand(const char* path, std::string_view start, std::string_view key, char* out);

// Copies a file into a new one, block by block.
void CopyByHand(const char* from, const char* to);

// Empties a file and writes a text into it.
void WriteByHand(const char* path, std::string_view text);

// Runs a shell line with system(3).
void RunLine(const std::string& line);

// What an edit of a file cannot do without: the copy, and the two shell lines that put it in place.
void EditByHand(const std::string& path);

// Opens, locks, unlocks and closes a file.
void LockByHand(const char* path);

// Ends the program: a figure of something that failed would be worth nothing.
[[noreturn]] void GiveUp(const std::string& what);

}  // namespace bench

#endif  // BENCH_FLOOR_H_
