// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* unhardened.c - a library without any hardening, to check that the hardening test can fail. */
#include <stdio.h>

int Unhardened(const char* text);

int Unhardened(const char* text) {
    char copy[64];
    return snprintf(copy, sizeof(copy), "%s", text);
}

/* An address within the code, which needs a text relocation. */
__asm__(".text\n.dc.a stdout\n");
