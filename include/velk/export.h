// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* export.h - marks the functions that libvelk.so exports. */
#ifndef VELK_EXPORT_H_
#define VELK_EXPORT_H_

/* The library is built with hidden visibility: only functions with this mark are exported. */
#define VELK_API __attribute__((visibility("default")))

#endif /* VELK_EXPORT_H_ */
