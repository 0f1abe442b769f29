// shell_blocks.cpp - tells which lines of a shell script run for an interface.
#include "frame/shell_blocks.h"

#include "frame/words.h"

namespace velk {
namespace {

bool HasKeyword(std::string_view line, std::string_view keyword) {
    return HasWord(line, keyword, /*comment_aware=*/true);
}

}  // namespace

bool ShellBlocks::RunsNext(std::string_view line) {
    switch (place_) {
        case Place::kOutside:
            if (!BeginsBlock(line)) {
                return true;
            }
            place_ = Place::kCondition;
            [[fallthrough]];  // "then" may stand on the same line
        case Place::kCondition:
            if (HasKeyword(line, "then")) {
                place_ = Place::kThen;
            }
            break;
        case Place::kThen:
            if (HasKeyword(line, "else")) {
                place_ = Place::kElse;
            }
            break;
        case Place::kElse:
            break;
    }
    if (HasKeyword(line, "fi")) {
        place_ = Place::kOutside;
    }
    switch (place_) {
        case Place::kThen:
            return matches_;
        case Place::kElse:
            return !matches_;
        default:
            return true;
    }
}

bool ShellBlocks::BeginsBlock(std::string_view line) {
    constexpr std::string_view kIf = "if";
    size_t position = 0;
    if (!FindWord(line, kIf, /*comment_aware=*/true, position)) {
        return false;
    }
    const std::string_view condition = line.substr(position + kIf.size());
    matches_ = Contains(condition, interface_);
    return Contains(condition, variable_);
}

}  // namespace velk
