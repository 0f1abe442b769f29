// value_kind.cpp - one form that the values of settings have.
#include "velkctl/value_kind.h"

#include <cstring>

#include "velkctl/terminal.h"

namespace velkctl {

Parsed ValueKind::Parse(std::span<const std::string> /*words*/) const {
    return Unparsable("cannot be set, only read");
}

std::string PrintText(const Data& data, std::string_view empty) {
    const std::string_view text(data.data(), strnlen(data.data(), data.size()));
    return text.empty() ? std::string(empty) : PrintableValue(text);
}

}  // namespace velkctl
