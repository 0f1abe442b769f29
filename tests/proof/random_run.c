// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* random_run.c - runs a proof with random inputs: the original, or its translation with NAME(x) =
 * ir_x. Prints one number for each run, made of all its inputs and claims, so that two programs can
 * be compared. */
#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#define JOIN(prefix, name) prefix##name
#define PREFIXED(prefix, name) JOIN(prefix, name)
#define NAME(name) PREFIXED(PREFIX, name)

typedef unsigned long u64;

void NAME(ENTRY)(void);

static u64 state;
static u64 seen = 1469598103934665603UL;

static void see(u64 value) {
    seen = (seen ^ value) * 1099511628211UL;
}

static u64 any(u64 most) {
    state = state * 6364136223846793005UL + 1442695040888963407UL;
    return most + 1 == 0 ? state : (state >> 16) % (most + 1);
}

void proof_leave(void) {
    printf("%016lx\n", seen);
    fflush(stdout);
    _exit(0);
}

void proof_record(int condition, const char* text) {
    see((u64)condition + 1);
    for (; *text != '\0'; ++text)
        see((unsigned char)*text);
}

void proof_claim(_Bool condition, const char* text) {
    proof_record(condition, text);
}

void proof_reached(_Bool condition, const char* text) {
    proof_record(condition, text);
}

u64 proof_unknown(void) {
    return 0;
}

void NAME(proof_assume)(_Bool condition) {
    if (!condition)
        proof_leave();
}

u64 NAME(proof_number)(u64 most) {
    const u64 number = any(most);
    see(number);
    return number;
}

/* Half of the bytes are those that mean something to the library. */
char* NAME(proof_bytes)(u64 size) {
    static const char known[] = "#  \n:,;*/-0123456789if then else fi VN\t}";
    char* bytes = malloc(size + 1);
    for (u64 i = 0; i < size; ++i)
        bytes[i] = any(1) == 0 ? known[any(sizeof(known) - 2)] : (char)any(255);
    return bytes;
}

int main(int count, char** arguments) {
    const int runs = count > 1 ? atoi(arguments[1]) : 1000;
    for (int run = 0; run < runs; ++run) {
        const pid_t child = fork();
        if (child == 0) {
            state = (u64)run * 2654435761UL + 12345;
            for (int i = 0; i < 4; ++i)
                any(1);
            NAME(ENTRY)();
            proof_leave();
        }
        int status;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
            return 1;
    }
    return 0;
}
