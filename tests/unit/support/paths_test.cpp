// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// paths_test.cpp - compares the tests' list of device paths with the library's.
#include <map>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

using Paths = std::map<std::string, std::string>;

constexpr char kTestList[] = "tests/support/paths.h";
constexpr char kLibraryList[] = "lib/base/paths.h";

// Reads the header's text, so a path that is added later is compared, too.
Paths PathsIn(const std::string& header) {
    static const std::regex kConstant("constexpr char (\\w+)\\[\\] =\\s*\"([^\"]*)\";");
    const std::string text = testkit::ReadFile(VELK_SOURCE_DIR "/" + header);
    Paths paths;
    for (std::sregex_iterator at(text.begin(), text.end(), kConstant); at != std::sregex_iterator();
         ++at) {
        paths[at->str(1)] = at->str(2);
    }
    return paths;
}

// Returns a line for each constant of `all` that the header does not have.
std::string MissingIn(const std::string& header, const Paths& paths, const Paths& all) {
    std::string missing;
    for (const auto& [name, path] : all) {
        if (!paths.contains(name)) {
            missing += name + " is missing: add it to " + header + "\n";
        }
    }
    return missing;
}

TEST(PathsTest, TheLibraryUsesThePathsThatTheTestsExpect) {
    const Paths expected = PathsIn(kTestList);
    const Paths used = PathsIn(kLibraryList);
    ASSERT_FALSE(used.empty());
    EXPECT_EQ(MissingIn(kTestList, expected, used), "");
    EXPECT_EQ(MissingIn(kLibraryList, used, expected), "");
    EXPECT_EQ(used, expected);
}

}  // namespace
