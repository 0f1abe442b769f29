# SPDX-FileCopyrightText: 2026 The libvelk authors
# SPDX-License-Identifier: MIT

"""The version of the package, which is that of libvelk."""

__version__ = "1.0.0"
