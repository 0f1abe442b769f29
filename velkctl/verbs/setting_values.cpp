// setting_values.cpp - settings and their values, as verbs show them.
#include "velkctl/verbs/setting_values.h"

#include <algorithm>

#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {

std::string ValueInWords(const Setting& setting, const Data& data, bool show_secrets) {
    if (setting.row->secret && !show_secrets) {
        return std::string(data == Data{} ? kNone : kMask);
    }
    return setting.row->kind->Print(data);
}

Json ValueInJson(const Setting& setting, const Data& data, bool show_secrets) {
    if (setting.row->secret && !show_secrets) {
        return data == Data{} ? Json(nullptr) : Json(kMask);
    }
    return setting.row->kind->ToJson(data);
}

std::string BareValue(const Setting& setting, const Data& data, bool show_secrets) {
    const Json value = ValueInJson(setting, data, show_secrets);
    const bool is_empty = value.empty() || (value.is_string() && value.get<std::string>().empty());
    return is_empty ? "" : ValueInWords(setting, data, show_secrets);
}

std::string UnreadableInWords(const Setting& setting, const Answer& answer) {
    return DescribeFailure(setting.name() + ": could not be read", answer);
}

Json ReadingInJson(const Setting& setting, const Answer& answer, bool show_secrets) {
    return answer.ok()
               ? ReadingInJson(setting, ValueInJson(setting, answer.data, show_secrets), nullptr)
               : ReadingInJson(setting, nullptr, UnreadableInWords(setting, answer));
}

Json ReadingInJson(const Setting& setting, Json value, Json error) {
    Json object;
    object["name"] = setting.name();
    object["value"] = std::move(value);
    object["error"] = std::move(error);
    return object;
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

}  // namespace velkctl
