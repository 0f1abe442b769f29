// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// image_reasons.h - the reason why a command fails with the files of an image.
#ifndef VELKCTL_VERBS_IMAGE_REASONS_H_
#define VELKCTL_VERBS_IMAGE_REASONS_H_

#include <string>
#include <vector>

#include "velkctl/files/file_image.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Returns the first file of the setting that the image lacks, that cannot be read, or that has no
// line for the setting, as in "/etc/dhclient.conf is missing in the image"; empty if none is found.
std::string ReasonInImage(const Setting& setting, const std::vector<FileImage>& images);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_IMAGE_REASONS_H_
