// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// record_layout.c - prints the layout of the record and the numbers of types and results, as the
// compiler has them.
#include <stddef.h>
#include <stdio.h>

#include "velk.h"

#define NUMBER(name) printf("%s %d\n", #name, (int)(name))
#define FIELD(name)                                              \
    printf("%s %zu %zu\n", #name, offsetof(_velk_request, name), \
           sizeof(((_velk_request*)NULL)->name))

int main(void) {
    printf("record 0 %zu\n", sizeof(_velk_request));
    FIELD(interface);
    FIELD(command_type);
    FIELD(command_id);
    FIELD(data);
    NUMBER(VELK_GET);
    NUMBER(VELK_SET);
    NUMBER(VELK_RESTART);
    NUMBER(VELK_CMD_RESTART);
    NUMBER(LIB_VELK_SUCCESS);
    NUMBER(LIB_VELK_FAILURE);
    NUMBER(LIB_VELK_LOCKED);
    NUMBER(LIB_VELK_INVALID_PARAMETER);
    NUMBER(LIB_VELK_NO_ADAPTER);
    NUMBER(LIB_VELK_WIRED_LINKED);
    return 0;
}
