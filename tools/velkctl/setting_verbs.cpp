// setting_verbs.cpp - the verbs that work on settings by name.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/catalogue.h"
#include "velkctl/device.h"
#include "velkctl/result_codes.h"
#include "velkctl/secret_source.h"
#include "velkctl/terminal.h"
#include "velkctl/verbs.h"
#include "velkctl/verification.h"

namespace velkctl {
namespace {

// A setting that may be read; complains when there is none.
std::optional<Setting> FindReadable(const std::string& name) {
    const std::optional<Setting> setting = FindSetting(Catalogue(), name);
    if (!setting) {
        Complain("get: " + UnknownSetting(Catalogue(), name));
        return std::nullopt;
    }
    if (!setting->can_get()) {
        Complain(name + ": cannot be read, only set");
        return std::nullopt;
    }
    return setting;
}

// The value of a secret: whether there is one.
std::string_view Masked(const Data& data) {
    return data == Data{} ? kNone : kMask;
}

// Reads one setting and prints its value behind the prefix.
ExitStatus Show(const Setting& setting, const std::string& prefix, bool show_secrets) {
    const Answer answer = Execute({VELK_GET, setting.row->id, setting.interface});
    if (answer.result != LIB_VELK_SUCCESS) {
        Complain(DescribeFailure(setting.name() + ": could not be read", answer.result));
        return FindResultCode(answer.result).status;
    }
    const bool masked = setting.row->secret && !show_secrets;
    Print(prefix +
          (masked ? std::string(Masked(answer.data)) : setting.row->kind->Print(answer.data)) +
          "\n");
    return ExitStatus::kDone;
}

// The data bytes of the words; those of a secret may say where it is to be found.
Parsed ParseValue(const Setting& setting, std::span<const std::string> words) {
    if (!setting.row->secret || words.size() != 1) {
        return setting.row->kind->Parse(words);
    }
    const Secret secret = ReadSecret(words.front());
    return secret.problem.empty() ? setting.row->kind->Parse({&secret.text, 1})
                                  : Unparsable(secret.problem);
}

// Says whether the name of a secret stands where its value should: the first word is the secret.
bool IsSwapped(std::span<const std::string> words) {
    return std::any_of(words.begin() + 1, words.end(),
                       [](const std::string& word) { return NamesSecret(Catalogue(), word); });
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string Directions(const Setting& setting) {
    return std::string(setting.can_get() ? "get" : "   ") + (setting.can_set() ? " set" : "    ");
}

}  // namespace

ExitStatus RunGet(const Invocation& invocation) {
    std::vector<Setting> settings;
    for (const std::string& name : invocation.words) {
        const std::optional<Setting> setting = FindReadable(name);
        if (!setting) {
            return ExitStatus::kInvalid;
        }
        settings.push_back(*setting);
    }
    ExitStatus first_failure = ExitStatus::kDone;
    for (const Setting& setting : settings) {
        const ExitStatus status = Show(setting, settings.size() == 1 ? "" : setting.name() + " = ",
                                       invocation.show_secrets);
        if (first_failure == ExitStatus::kDone) {
            first_failure = status;
        }
    }
    return first_failure;
}

ExitStatus RunSet(const Invocation& invocation) {
    const std::string& name = invocation.words.front();
    const std::optional<Setting> setting = FindSetting(Catalogue(), name);
    if (!setting) {
        return Refuse("set: " + UnknownSetting(Catalogue(), IsSwapped(invocation.words)
                                                                ? kMask
                                                                : std::string_view(name)));
    }
    if (!setting->can_set()) {
        return Refuse(name + ": cannot be set, only read");
    }
    const Parsed value = ParseValue(*setting, std::span(invocation.words).subspan(1));
    if (!value.ok()) {
        return Refuse(name + ": " + value.problem);
    }
    const Answer answer = Execute({VELK_SET, setting->row->id, setting->interface}, value.data);
    if (answer.result != LIB_VELK_SUCCESS) {
        Complain(DescribeFailure(name + ": could not be set", answer.result));
        return FindResultCode(answer.result).status;
    }
    return VerifySet(*setting, value.data);
}

ExitStatus RunList(const Invocation& /*invocation*/) {
    const std::vector<Setting> settings = SettingsOf(Catalogue());
    size_t width = 0;
    for (const Setting& setting : settings) {
        width = std::max(width, setting.name().size());
    }
    for (const Setting& setting : settings) {
        Print(Padded(setting.name(), width) + "  " + Directions(setting) + "  " +
              std::string(setting.row->help) + "\n");
    }
    return ExitStatus::kDone;
}

}  // namespace velkctl
