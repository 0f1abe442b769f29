// catalogue.h - the settings velkctl knows.
#ifndef VELKCTL_SETTINGS_CATALOGUE_H_
#define VELKCTL_SETTINGS_CATALOGUE_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/settings/value_kind.h"

namespace velkctl {

// Flags of CatalogueRow::interfaces.
inline constexpr unsigned kNoInterface = 1U;
inline constexpr unsigned kEth0 = 2U;
inline constexpr unsigned kEth1 = 4U;

// Flags of CatalogueRow::directions.
inline constexpr unsigned kGet = 1U;
inline constexpr unsigned kSet = 2U;

struct CatalogueRow {
    std::string_view name;
    uint32_t id;
    unsigned interfaces;
    unsigned directions;
    const ValueKind* kind;
    bool secret;  // shown to those who ask for it alone
    std::string_view help;
};

// A row for one of its interfaces: what a name such as "eth0.dns" stands for.
struct Setting {
    const CatalogueRow* row;
    std::string_view interface;  // empty for a setting of the whole device

    bool can_get() const { return (row->directions & kGet) != 0; }
    bool can_set() const { return (row->directions & kSet) != 0; }
    std::string name() const;
};

std::span<const CatalogueRow> Catalogue();

// Every setting of the rows, in their order.
std::vector<Setting> SettingsOf(std::span<const CatalogueRow> rows);

// The setting with this full name.
std::optional<Setting> FindSetting(std::span<const CatalogueRow> rows, std::string_view name);

// Says whether a word is the name or the id of a secret.
bool NamesSecret(std::span<const CatalogueRow> rows, std::string_view word);

// The id of a command, written as a decimal number.
std::optional<uint32_t> ParseId(std::string_view word);

// The full names that a short or misspelt one may mean; empty when there is no telling.
std::vector<std::string> NamesMeant(std::span<const CatalogueRow> rows, std::string_view name);

// Says about a name that FindSetting() did not find what would be right. One that may be a key is
// neither repeated nor guessed at.
std::string UnknownSetting(std::span<const CatalogueRow> rows, std::string_view name,
                           bool may_be_key = false);

// Says about a word that is neither eth0 nor eth1 what would be right. `shown` is the word as a
// message may have it.
std::string UnknownInterface(std::string_view word, const std::string& shown);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_CATALOGUE_H_
