// script_blocks.h - where the blocks of a script are not what the library takes them for.
#ifndef VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_
#define VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/doctor/finding.h"

namespace velkctl {

// A script with lines that the library switches by a "#".
struct Script {
    std::string path;
    std::string variable;  // what a condition must name to begin a block
    std::string subject;   // the settings that are switched in it, as people are told
    Concerns concerns;     // the same
    Hinders hinders;       // what a block that is not recognised keeps them from
    std::vector<std::string> lines;
};

Findings CheckBlocks(const Script& script);

// The lines that run for the interface, as the library sees it. An empty interface means all.
std::vector<size_t> LinesThatRun(const Script& script, std::string_view interface);

// Says whether the text behind the "#" of a switched-off line would still be switched off once the
// library has taken that "#" away.
bool HasSecondMark(std::string_view line, size_t position);

// What there is to say then; the caller says of what.
Finding SecondMark(std::string_view noun, const std::string& file, size_t index);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_SCRIPT_BLOCKS_H_
