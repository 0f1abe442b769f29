// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// image_reasons.cpp - the reason why a command fails with the files of an image.
#include "velkctl/verbs/image_reasons.h"

#include <cstring>
#include <string_view>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"

namespace velkctl {
namespace {

// Returns the missing text, as in "stanza of eth0"; empty if the file has a line for the setting.
std::string MissingText(const FileLine& line, const Setting& setting, const FileImage& image) {
    if (image.path == velk::kInterfacesFile) {
        const std::string interface(setting.interface);
        const bool has_stanza = image.bytes.find("iface " + interface + " ") != std::string::npos;
        if (!has_stanza) {
            return "stanza of " + interface;
        }
    }
    const bool has_key = image.bytes.find(line.key) != std::string::npos;
    return has_key ? "" : "line with " + std::string(line.key);
}

std::string ReasonIn(const FileLine& line, const Setting& setting,
                     const std::vector<FileImage>& images) {
    const std::string_view path = line.file == nullptr ? "" : line.file;
    const FileImage* image = velk::FindRow(images, path, &FileImage::path);
    if (image == nullptr) {
        return "";
    }
    if (!image->exists) {
        return image->path + " is missing in the image";
    }
    if (image->error != 0) {
        return image->path + " of the image cannot be read: " + strerror(image->error);
    }
    const std::string missing = MissingText(line, setting, *image);
    return missing.empty() ? "" : image->path + " of the image has no " + missing;
}

}  // namespace

std::string ReasonInImage(const Setting& setting, const std::vector<FileImage>& images) {
    const HeldIn& held_in = setting.row->held_in;
    const std::string reason = ReasonIn(held_in.line, setting, images);
    return reason.empty() ? ReasonIn(held_in.second_line, setting, images) : reason;
}

}  // namespace velkctl
