// setting_values.h - settings and their values, as verbs show them.
#ifndef VELKCTL_VERBS_SETTING_VALUES_H_
#define VELKCTL_VERBS_SETTING_VALUES_H_

#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// The value in an answer, with a secret masked unless it may be shown: of a masked one only whether
// there is one is told.
std::string ValueInWords(const Setting& setting, const Data& data, bool show_secrets);
Json ValueInJson(const Setting& setting, const Data& data, bool show_secrets);

// The value alone, for scripts: one that is none or empty is the empty text.
std::string BareValue(const Setting& setting, const Data& data, bool show_secrets);

// Why there is no value: "eth0.dns: could not be read (LIB_VELK_FAILURE, -1)".
std::string UnreadableInWords(const Setting& setting, const Answer& answer);

// What became of reading a setting: {"name": ..., "value": ..., "error": null}
Json ReadingInJson(const Setting& setting, const Answer& answer, bool show_secrets);
Json ReadingInJson(const Setting& setting, Json value, Json error);

// A text with blanks behind it, so that columns stand below each other.
std::string Padded(std::string text, size_t width);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SETTING_VALUES_H_
