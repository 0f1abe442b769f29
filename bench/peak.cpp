// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// peak.cpp - makes one call and prints the peak memory of this program in KB.
#include <cstdio>
#include <cstring>

#include "velk.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const bool is_set = strcmp(argv[1], "set") == 0;
    const _velk_request request = {"eth0", is_set ? VELK_SET : VELK_GET, VELK_CMD_IP_ADDRESS,
                                   "192.168.0.10"};
    _velk_request response;
    if (execute_velk_command(&request, &response) != LIB_VELK_SUCCESS) {
        return 1;
    }
    // Not getrusage(2): its value is at least that of the parent before exec.
    FILE* status = fopen("/proc/self/status", "r");
    char line[256];
    long peak = 0;
    while (status != nullptr && fgets(line, sizeof(line), status) != nullptr) {
        if (sscanf(line, "VmHWM: %ld", &peak) == 1) {
            printf("%ld\n", peak);
            return 0;
        }
    }
    return 1;
}
