// text_values.cpp - values that are a text.
#include "velkctl/text_values.h"

#include "velkctl/terminal.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// What is wrong with the words; empty when they are one text that is taken.
std::string TextKind::Problem(std::span<const std::string> words) const {
    const std::string give = std::string("; give ").append(wanted_);
    if (words.empty()) {
        return "no value given" + give;
    }
    if (words.size() > 1) {
        return std::to_string(words.size()) + " values given" + give +
               ", in quotes when it holds blanks";
    }
    const size_t length = words.front().size();
    if (!takes_length_(length)) {
        return std::to_string(length) + (length == 1 ? " byte given" : " bytes given") + give;
    }
    if (HasControls(words.front())) {
        return "control characters, such as the end of a line, are not taken" + give;
    }
    return {};
}

Parsed TextKind::Parse(std::span<const std::string> words) const {
    Parsed parsed;
    if (words.size() == 1 && words.front() == empty_) {
        return parsed;
    }
    parsed.problem = Problem(words);
    if (parsed.ok()) {
        (void)words.front().copy(parsed.data.data(), parsed.data.size());
    }
    return parsed;
}

std::string TextKind::Print(const Data& data) const {
    return PrintText(data, empty_);
}

nlohmann::ordered_json TextKind::ToJson(const Data& data) const {
    if (data[0] == '\0' && empty_ == kNone) {
        return nullptr;
    }
    return PrintText(data, "");
}

}  // namespace velkctl
