// edit_copy.h - the copy in which the library edits a file.
#ifndef TESTS_SUPPORT_EDIT_COPY_H_
#define TESTS_SUPPORT_EDIT_COPY_H_

#include <string>

#include "support/paths.h"

namespace testkit {

inline std::string CopyOf(const std::string& path) {
    return kEditFolder + path.substr(path.rfind('/'));
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_EDIT_COPY_H_
