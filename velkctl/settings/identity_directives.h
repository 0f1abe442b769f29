// identity_directives.h - how administrator and location are named in the SNMP agent's file.
#ifndef VELKCTL_SETTINGS_IDENTITY_DIRECTIVES_H_
#define VELKCTL_SETTINGS_IDENTITY_DIRECTIVES_H_

#include <array>
#include <cstdint>
#include <string_view>

#include "velk.h"

namespace velkctl {

// A set replaces the rest of every line from the directive's name on, wherever on the line it is.
struct Directive {
    uint32_t id;
    std::string_view setting;
    std::string_view name;
    std::string_view key;  // of its line in the library's settings file
};

inline constexpr std::array<Directive, 2> kDirectives{{
    {VELK_CMD_ADMINISTRATOR, "administrator", "syscontact", "ADMINISTRATOR="},
    {VELK_CMD_LOCATION, "location", "syslocation", "LOCATION="},
}};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_IDENTITY_DIRECTIVES_H_
