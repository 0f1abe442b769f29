// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// mounted.h - a mount on the private device of a test.
#ifndef TESTS_SUPPORT_MOUNTED_H_
#define TESTS_SUPPORT_MOUNTED_H_

#include <string>

#include <gtest/gtest.h>
#include <sys/mount.h>

namespace testkit {

// Mounts a file system until the end of the scope.
class Mounted {
  public:
    // Takes the arguments of mount(2).
    Mounted(const char* source, const std::string& target, const char* type, unsigned long flags,
            const char* options)
        : target_(target) {
        EXPECT_EQ(mount(source, target.c_str(), type, flags, options), 0) << target;
    }
    ~Mounted() { EXPECT_EQ(umount(target_.c_str()), 0) << target_; }
    Mounted(const Mounted&) = delete;
    Mounted& operator=(const Mounted&) = delete;

  private:
    const std::string target_;
};

// Replaces a folder by an empty one until the end of the scope.
class Emptied : public Mounted {
  public:
    explicit Emptied(const std::string& folder, const char* options = "")
        : Mounted("none", folder, "tmpfs", 0, options) {}
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_MOUNTED_H_
