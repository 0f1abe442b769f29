// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// image_root.h - paths of a device in the root folder of an image.
#ifndef VELKCTL_FILES_IMAGE_ROOT_H_
#define VELKCTL_FILES_IMAGE_ROOT_H_

#include <string>
#include <string_view>

namespace velkctl {

// Returns the path of a device's file in the root folder of an image, without symbolic links. A
// link stays in the image, also if it is absolute or climbs with "..". Empty for a loop of links.
std::string PathInRoot(const std::string& root, std::string_view path);

}  // namespace velkctl

#endif  // VELKCTL_FILES_IMAGE_ROOT_H_
