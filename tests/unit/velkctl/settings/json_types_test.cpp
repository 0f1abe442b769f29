// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The JSON type of each setting, over many data bytes.
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"
#include <nlohmann/json.hpp>

namespace {

using velkctl::Catalogue;
using velkctl::CatalogueRow;
using velkctl::Data;

Data DataOf(const std::string& bytes) {
    Data data{};
    (void)bytes.copy(data.data(), data.size());
    return data;
}

// Every value of the first byte, and texts of the device's files.
std::vector<Data> Samples() {
    std::vector<Data> samples;
    for (int code = 0; code < 256; ++code) {
        samples.push_back(DataOf(std::string(1, static_cast<char>(code))));
    }
    for (const char* text :
         {"none", "off", "on", "wep", "3", "192.168.0.1", "192.168.0.1 192.168.0.2", "time.example",
          "020000000010", "a text", "\2\1\0\3\4", "\x7f\x7f\x7f\x7f\x7f\x7f\x7f\x7f"}) {
        samples.push_back(DataOf(text));
    }
    return samples;
}

TEST(EverySetting, HasOneJsonTypeBesidesNull) {
    const std::map<std::string_view, std::string> others{
        {"dns", "array"},
        {"signal", "array"},
        {"standard", "number"},
        {"channel", "number"},
        {"region", "number"},
        {"authentication", "number"},
        {"wep-default-key", "number"},
        {"standards-enabled", "number"},
    };
    for (const CatalogueRow& row : Catalogue()) {
        std::set<std::string> found;
        for (const Data& data : Samples()) {
            found.insert(row.kind->ToJson(data).type_name());
        }
        found.erase("null");
        const auto other = others.find(row.name);
        const std::string expected = other == others.end() ? "string" : other->second;
        EXPECT_EQ(found, std::set<std::string>{expected}) << row.name;
    }
}

}  // namespace
