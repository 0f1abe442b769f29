// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* version.h - the version of libvelk that a program is compiled with. */
#ifndef VELK_VERSION_H_
#define VELK_VERSION_H_

#define VELK_VERSION_MAJOR 1 /* changes when a program has to be changed */
#define VELK_VERSION_MINOR 0 /* changes when something is added */
#define VELK_VERSION_PATCH 0 /* changes with every other release */
#define VELK_VERSION "1.0.0"

#endif /* VELK_VERSION_H_ */
