// file_edit.h - rewrites a system file line by line, through a copy.
#ifndef VELK_BASE_FILE_EDIT_H_
#define VELK_BASE_FILE_EDIT_H_

#include <string>
#include <string_view>

#include "lib/base/line_reader.h"
#include "lib/base/unique_fd.h"

namespace velk {

// One rewrite of a file: its lines are handed out, what is written goes into the edit copy
// /var/tmp/<base name>, and Finish() copies that over the file. Copying in place keeps the file's
// inode, owner and mode, and a file that programs have open stays theirs.
//
// An edit that is given up before Finish() leaves the file as it was, and its edit copy behind for
// the next edit to replace.
class FileEdit {
  public:
    // Opens the file, then a new edit copy, whether or not the file opened.
    explicit FileEdit(const std::string& target);

    bool is_open() const { return target_error() == 0 && copy_error() == 0; }
    // The errno of the failed open; 0 when it succeeded.
    int target_error() const { return reader_.error(); }
    int copy_error() const { return copy_error_; }

    // Sets `line` to the file's next line with its "\n", valid until the next call. A last line
    // without one is given one. False at the end of the file.
    bool ReadLine(std::string_view& line);
    // Keeps the lines up to the next one that begins with `start`, and sets `line` to that one.
    bool KeepLinesBefore(std::string_view start, std::string_view& line);

    // Adds the line that ReadLine() handed out last, or its front, to the edit copy. Lines kept one
    // after the other are written as one piece.
    void Keep(std::string_view line);
    // Adds any text to the edit copy as it stands.
    void Write(std::string_view text);

    // Closes both files and puts the edit copy in place. A file that the copying has cut is mended.
    // Returns LIB_VELK_SUCCESS also where nothing was copied and the file is as it was.
    // LIB_VELK_FAILURE, after logging it, when the edit copy could not be written in full: it is
    // removed and the file left as it was; and when a cut file could not be mended: the edit copy
    // stays.
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
    std::string_view run_;  // of kept lines, in the reader's block
    std::string pending_;   // in front of it, and not in the edit copy yet
    int write_error_ = 0;
};

}  // namespace velk

#endif  // VELK_BASE_FILE_EDIT_H_
