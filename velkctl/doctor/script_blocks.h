// script_blocks.h - checks the blocks of a script, and the lines in them that the library switches.
#ifndef VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_
#define VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"

namespace velkctl {

// A script with lines that the library switches by a "#".
struct Script {
    std::string variable;  // a condition must name it to begin a block
    Finding about;         // a finding without a text about a misread block
    Lines lines;
};

Findings CheckBlocks(const Script& script);

// Returns the lines that run for the interface, as the library reads the script; all of them if the
// interface is empty.
std::vector<size_t> LinesThatRun(const Script& script, std::string_view interface);

// Returns a finding if a second "#" before the position would keep the line switched off. `noun` is
// the command, call or entry that the line is.
Findings CheckMarks(const Finding& about, std::string_view line, size_t position,
                    std::string_view noun);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_
