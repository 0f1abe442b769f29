// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_cases_test.cpp - runs every case of the edits ring.
#include <algorithm>
#include <filesystem>

#include <sys/stat.h>

#include "edits/edit_case.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"

namespace edits {
namespace {

namespace fs = std::filesystem;

// Differs from the mode of a new file, so that a replaced file is noticed.
constexpr mode_t kMode = 0640;

std::optional<std::string> Contents(const std::string& path) {
    if (!testkit::Exists(path)) {
        return std::nullopt;
    }
    return testkit::ReadFile(path);
}

class EditTest : public testkit::DeviceTest {
  public:
    explicit EditTest(fs::path file) : file_(std::move(file)) {}

    void TestBody() override {
        const EditCase edit = ReadEditCase(file_);
        std::map<std::string, testkit::FileIdentity> identities;
        for (const CaseFile& file : edit.files) {
            if (file.before) {
                testkit::WriteFile(file.path, *file.before);
                chmod(file.path.c_str(), kMode);
                identities[file.path] = testkit::IdentityOf(file.path);
            }
        }
        EXPECT_EQ(Execute(edit.request), edit.result);
        for (const CaseFile& file : edit.files) {
            EXPECT_EQ(Contents(file.path), file.after) << file.path;
            const std::string copy = testkit::CopyOf(file.path);
            EXPECT_EQ(Contents(copy), file.copy) << copy;
            if (file.before && file.after) {
                EXPECT_EQ(testkit::IdentityOf(file.path), identities[file.path]) << file.path;
            }
        }
    }

  private:
    const fs::path file_;
    testkit::FakeShell shell_;
};

std::vector<fs::path> SortedEntries(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        found.push_back(entry.path());
    }
    std::ranges::sort(found);
    return found;
}

bool RegisterCases() {
    for (const fs::path& command : SortedEntries(VELK_SOURCE_DIR "/tests/edits")) {
        if (!fs::is_directory(command)) {
            continue;
        }
        for (const fs::path& file : SortedEntries(command)) {
            ::testing::RegisterTest(command.filename().c_str(), file.filename().c_str(), nullptr,
                                    nullptr, file.c_str(), 1,
                                    [file] { return new EditTest(file); });
        }
    }
    return true;
}

const bool registered = RegisterCases();

}  // namespace
}  // namespace edits
