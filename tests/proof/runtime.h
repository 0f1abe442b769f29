// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* runtime.h - types and operations of the C that ir_to_c.py writes. The prover reads it, and GCC
 * for the comparison with the original. */
#ifndef VELK_PROOF_RUNTIME_H_
#define VELK_PROOF_RUNTIME_H_

#include <string.h>

typedef unsigned char u8;
typedef unsigned short u16;
typedef unsigned int u32;
typedef unsigned long u64;
typedef unsigned __int128 u128;
typedef signed char s8;
typedef short s16;
typedef int s32;
typedef long s64;
typedef __int128 s128;

extern _Bool unwinding; /* an exception is on its way to its handler */
extern u8* thrown;

/* The whole of a proof. An exception that the proof does not catch is a mistake. */
#define PROVE(name)                                                 \
    void prove(void) {                                              \
        name();                                                     \
        RUNTIME_CLAIM(!unwinding, "no exception leaves the proof"); \
    }

/* Values that the source leaves open. */
#define UNKNOWN_1 proof_unknown()
#define UNKNOWN_8 ((u8)proof_unknown())
#define UNKNOWN_16 ((u16)proof_unknown())
#define UNKNOWN_32 ((u32)proof_unknown())
#define UNKNOWN_64 proof_unknown()
u64 proof_unknown(void);

#ifdef __CPROVER__
/* A place that must be reached is a claim that must fail. */
#define PROOF_CLAIM(condition, text) __CPROVER_assert(condition, text)
#ifndef PROOF_PLANTED
#define PROOF_REACHED(condition, text) __CPROVER_assert(!(condition), "reached: " text)
#else
#define PROOF_REACHED(condition, text) (void)(condition)
#endif
#define RUNTIME_CLAIM(condition, text) __CPROVER_assert(condition, text)
#define UNREACHABLE() __CPROVER_assert(0, "no way leads here"), __CPROVER_assume(0)
#define ASSUME(condition) __CPROVER_assume(condition)
#else
void proof_record(int condition, const char* text);
void proof_leave(void) __attribute__((noreturn));
#define PROOF_CLAIM(condition, text) proof_record(condition, text)
#define PROOF_REACHED(condition, text) proof_record(condition, text)
#define RUNTIME_CLAIM(condition, text) \
    do {                               \
        if (!(condition))              \
            __builtin_trap();          \
    } while (0)
#define UNREACHABLE() __builtin_trap()
#define ASSUME(condition)  \
    do {                   \
        if (!(condition))  \
            proof_leave(); \
    } while (0)
#endif

/* With a length that is a constant, and with any other length: bytewise. */
#define proof_memcpy(to, from, size) memcpy(to, from, size)
#define proof_memmove(to, from, size) memmove(to, from, size)
#define proof_memset(to, byte, size) memset(to, byte, size)
void proof_memcpy_loop(u8* to, u8* from, u64 size);
void proof_memmove_loop(u8* to, u8* from, u64 size);
void proof_memset_loop(u8* to, u8 byte, u64 size);
u32 proof_ctlz_32(u32 value);
u32 proof_cttz_32(u32 value);

#endif
