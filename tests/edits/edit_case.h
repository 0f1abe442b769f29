// edit_case.h - one case of the edits ring, as its folder tells it.
#ifndef TESTS_EDITS_EDIT_CASE_H_
#define TESTS_EDITS_EDIT_CASE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "velk.h"

namespace edits {

// A file of the device around one request.
struct CaseFile {
    std::string path;                   // on the device
    std::optional<std::string> before;  // nothing: it does not exist
    std::optional<std::string> after;
    std::optional<std::string> copy;  // what is left of the edit copy
};

struct EditCase {
    _velk_request request{};
    int result = 0;
    std::vector<CaseFile> files;  // every file a set may edit, given or not
};

// Throws std::runtime_error for a folder that is not a well-formed case.
EditCase ReadEditCase(const std::filesystem::path& folder);

}  // namespace edits

#endif  // TESTS_EDITS_EDIT_CASE_H_
