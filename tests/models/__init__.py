# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""Models of the library's commands, written from its documents by writers who have not read its sources.

scripts/model compares them with the library on random files and requests; see docs/testing.md."""
