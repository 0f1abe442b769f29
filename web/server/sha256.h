// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// sha256.h - the hash function of FIPS 180-4.
#ifndef WEB_SERVER_SHA256_H_
#define WEB_SERVER_SHA256_H_

#include <string>
#include <string_view>

namespace velkweb {

// Returns the SHA-256 of the bytes as 64 hexadecimal digits.
std::string Sha256(std::string_view bytes);

}  // namespace velkweb

#endif  // WEB_SERVER_SHA256_H_
