// paths_test.cpp - compares the tests' list of device paths with the library's.
#include <map>
#include <regex>
#include <string>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

// Read from the headers' text: a path that is added later is compared too.
std::map<std::string, std::string> PathsIn(const std::string& header) {
    static const std::regex kConstant("constexpr char (\\w+)\\[\\] =\\s*\"([^\"]*)\";");
    const std::string text = testkit::ReadFile(VELK_SOURCE_DIR "/" + header);
    std::map<std::string, std::string> paths;
    for (std::sregex_iterator at(text.begin(), text.end(), kConstant); at != std::sregex_iterator();
         ++at) {
        paths[at->str(1)] = at->str(2);
    }
    return paths;
}

TEST(PathsTest, TheLibraryUsesThePathsThatTheTestsExpect) {
    const auto expected = PathsIn("tests/support/paths.h");
    const auto used = PathsIn("lib/base/paths.h");
    ASSERT_FALSE(used.empty());
    for (const auto& [name, path] : used) {
        const auto found = expected.find(name);
        if (found == expected.end()) {
            ADD_FAILURE() << name << " is missing: add it to tests/support/paths.h";
        } else {
            EXPECT_EQ(path, found->second) << name;
        }
    }
}

}  // namespace
