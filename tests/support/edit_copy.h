// edit_copy.h - where the copy lies through which the library edits a file.
#ifndef TESTS_SUPPORT_EDIT_COPY_H_
#define TESTS_SUPPORT_EDIT_COPY_H_

#include <string>

namespace testkit {

inline std::string CopyOf(const std::string& path) {
    return "/var/tmp" + path.substr(path.rfind('/'));
}

}  // namespace testkit

#endif  // TESTS_SUPPORT_EDIT_COPY_H_
