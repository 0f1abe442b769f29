// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* empty_program.c - the cost of starting a C program. */
int main(void) {
    return 0;
}
