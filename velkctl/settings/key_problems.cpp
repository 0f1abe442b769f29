// key_problems.cpp - problems with the text of a key other than its length.
#include "velkctl/settings/key_problems.h"

#include "velk/request.h"
#include "velkctl/text/escaping.h"

namespace velkctl {

std::string_view KeyProblem(std::string_view key) {
    // Copied from the output of get or show, it would replace the key.
    return key == kMask ? "this is the mask that is shown in place of a key" : "";
}

std::string_view WepKeyProblem(std::string_view key) {
    const bool is_hex = key.size() == VELK_WEP_SHORT_HEX_KEY || key.size() == VELK_WEP_LONG_HEX_KEY;
    if (is_hex && key.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
        return "a key of 10 or 26 bytes consists of hex digits";
    }
    return KeyProblem(key);
}

}  // namespace velkctl
