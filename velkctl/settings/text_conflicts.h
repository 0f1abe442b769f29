// text_conflicts.h - values that would have a set change the wrong text of a file.
#ifndef VELKCTL_SETTINGS_TEXT_CONFLICTS_H_
#define VELKCTL_SETTINGS_TEXT_CONFLICTS_H_

#include <string>

#include "velkctl/call/device.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data.h"

namespace velkctl {

// The library finds the text it replaces by its first occurrence on a line. Says why this set, or
// the next one, would find another text: a time server whose name is a part of the command before
// it, or a word of the SNMP agent's file within administrator or location. Looks at the new value
// and at the present ones. Empty if every set finds the right text, or if that cannot be read.
std::string TextConflict(const Setting& setting, const Data& value, const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_TEXT_CONFLICTS_H_
