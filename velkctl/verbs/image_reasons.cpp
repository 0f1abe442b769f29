// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// image_reasons.cpp - the reason why a command fails with the files of an image.
#include "velkctl/verbs/image_reasons.h"

#include <cstring>
#include <string_view>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/text/take_line.h"

namespace velkctl {
namespace {

// Returns the stanza of the interface; empty if there is none.
std::string_view StanzaOf(std::string_view interface, std::string_view text) {
    std::string_view rest = text;
    while (!rest.empty() && velk::HeaderLength(rest, interface) == 0) {
        TakeLine(rest);
    }
    const size_t length = rest.find(std::string("\n").append(velk::kStanzaStart));
    return rest.substr(0, length);
}

// True if a line has the key and is no comment.
bool HasKey(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (line.find(key) != std::string_view::npos && !line.starts_with('#')) {
            return true;
        }
    }
    return false;
}

// Returns the missing text, as in "stanza of eth0"; empty if the file has a line for the setting.
std::string MissingText(const FileLine& line, const Setting& setting, const FileImage& image) {
    std::string_view text = image.bytes;
    if (image.path == velk::kInterfacesFile) {
        text = StanzaOf(setting.interface, text);
        if (text.empty()) {
            return "stanza of " + std::string(setting.interface);
        }
    }
    const std::string_view key = line.key;
    return HasKey(text, key)
               ? ""
               : "line with " + std::string(key.substr(0, key.find_last_not_of(' ') + 1));
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
