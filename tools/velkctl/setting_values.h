// setting_values.h - settings and their values, as verbs show them.
#ifndef VELKCTL_SETTING_VALUES_H_
#define VELKCTL_SETTING_VALUES_H_

#include <string>

#include "velkctl/catalogue.h"
#include "velkctl/device.h"
#include "velkctl/report.h"

namespace velkctl {

// The value in an answer, with a secret masked unless it may be shown: of a masked one only whether
// there is one is told.
std::string ValueInWords(const Setting& setting, const Data& data, bool show_secrets);
Json ValueInJson(const Setting& setting, const Data& data, bool show_secrets);

// {"name": ..., "value": ..., "error": null}
Json SettingInJson(const Setting& setting, Json value, Json error);

// A text with blanks behind it, so that columns stand below each other.
std::string Padded(std::string text, size_t width);

}  // namespace velkctl

#endif  // VELKCTL_SETTING_VALUES_H_
