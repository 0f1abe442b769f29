// usual_files.h - recognises files in the device's usual form.
#ifndef TESTS_FUZZ_KIT_USUAL_FILES_H_
#define TESTS_FUZZ_KIT_USUAL_FILES_H_

#include <string>
#include <vector>

#include "fuzz/kit/edit_files.h"

namespace fuzz {

// True when the files are such that the setting must be read back as it was set, and setting it
// twice be the same as once. Other files have the same lines edited, but may hold them in forms
// that the reading side sees differently.
bool IsUsual(const Setting& setting, const std::vector<std::string>& files);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_USUAL_FILES_H_
