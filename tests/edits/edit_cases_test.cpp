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

// Another one than a new file would get, so that replacing the file shows.
constexpr mode_t kMode = 0640;

std::optional<std::string> Contents(const std::string& path) {
    if (!testkit::Exists(path)) {
        return std::nullopt;
    }
    return testkit::ReadFile(path);
}

class EditTest : public testkit::DeviceTest {
  public:
    explicit EditTest(fs::path folder) : folder_(std::move(folder)) {}

    void TestBody() override {
        const EditCase edit = ReadEditCase(folder_);
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
    const fs::path folder_;
    testkit::FakeShell shell_;
};

std::vector<fs::path> FoldersIn(const fs::path& folder) {
    std::vector<fs::path> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (entry.is_directory()) {
            found.push_back(entry.path());
        }
    }
    std::ranges::sort(found);
    return found;
}

bool RegisterCases() {
    for (const fs::path& command : FoldersIn(VELK_SOURCE_DIR "/tests/edits")) {
        for (const fs::path& folder : FoldersIn(command)) {
            ::testing::RegisterTest(command.filename().c_str(), folder.filename().c_str(), nullptr,
                                    nullptr, __FILE__, __LINE__,
                                    [folder] { return new EditTest(folder); });
        }
    }
    return true;
}

const bool registered = RegisterCases();

}  // namespace
}  // namespace edits
