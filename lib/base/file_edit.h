// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// file_edit.h - rewrites a system file line by line, through a copy.
#ifndef VELK_BASE_FILE_EDIT_H_
#define VELK_BASE_FILE_EDIT_H_

#include <string>
#include <string_view>

#include "lib/base/line_reader.h"
#include "lib/base/unique_fd.h"

namespace velk {

// One rewrite of a file. The lines of the file are read, new text is written into the edit copy
// /var/tmp/<base name>, and Finish() copies that over the file. Copying in place keeps the file's
// inode, owner and mode, and programs that have the file open see the new text.
//
// An edit that ends before Finish() leaves the file unchanged. Its edit copy remains until the next
// edit replaces it.
class FileEdit {
  public:
    // Opens the file, then creates a new edit copy, even if the file could not be opened.
    explicit FileEdit(const std::string& target);

    bool is_open() const { return target_error() == 0 && copy_error() == 0; }
    // Returns the errno of the failed open; 0 if it succeeded.
    int target_error() const { return reader_.error(); }
    int copy_error() const { return copy_error_; }

    // Sets `line` to the file's next line with its "\n", valid until the next call. A last line
    // without one gets one. Returns false at the end of the file.
    bool ReadLine(std::string_view& line);
    // Keeps the lines before the next one that begins with `start`, and sets `line` to that line.
    // Returns false if there is no such line.
    bool KeepLinesBefore(std::string_view start, std::string_view& line);

    // Adds the last line that was read, or its front, to the edit copy. Lines kept one after the
    // other are written as one piece.
    void Keep(std::string_view line);
    // Adds any text to the edit copy unchanged.
    void Write(std::string_view text);

    // Closes both files and puts the edit copy in place. A file that the copying has truncated is
    // repaired. Returns LIB_VELK_SUCCESS also if nothing was copied and the file is unchanged.
    // Returns LIB_VELK_FAILURE, after a log line, in two cases. If the edit copy could not be
    // written in full, it is removed and the file is unchanged. If a truncated file could not be
    // repaired, the edit copy stays.
    int Finish();

  private:
    UniqueFd CloseCopy();
    int PutInPlace(int whole_copy);
    void EndRun();
    void Add(std::string_view text);
    void WriteOut(std::string_view text);
    void Flush();

    const std::string target_;
    const std::string copy_path_;
    LineReader reader_;
    UniqueFd copy_;
    const int copy_error_;
    std::string_view run_;  // the last kept lines, in the reader's block
    std::string pending_;   // the text before run_ that is not written yet
    int write_error_ = 0;
};

}  // namespace velk

#endif  // VELK_BASE_FILE_EDIT_H_
