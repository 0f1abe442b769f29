// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// document_file.h - reads the text of a document from a file or from standard input.
#ifndef VELKCTL_DOCUMENTS_DOCUMENT_FILE_H_
#define VELKCTL_DOCUMENTS_DOCUMENT_FILE_H_

#include <string>

#include "velkctl/documents/settings_document.h"

namespace velkctl {

// The longest text of a document, in bytes. It has room for the longest values of all settings.
inline constexpr size_t kLongestDocument = size_t{64} * 1024;

// Reads the document in the file; in standard input for "-". A file that cannot be read is a
// problem of the document.
SettingsDocument ReadDocumentFile(const std::string& word);

}  // namespace velkctl

#endif  // VELKCTL_DOCUMENTS_DOCUMENT_FILE_H_
