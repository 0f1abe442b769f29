// value_kind.cpp - one form that the values of settings have.
#include "velkctl/value_kind.h"

namespace velkctl {

Parsed ValueKind::Parse(std::span<const std::string> /*words*/) const {
    return Unparsable("cannot be set, only read");
}

}  // namespace velkctl
