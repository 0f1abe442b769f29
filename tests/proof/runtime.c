// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

/* runtime.c - the functions of libc and of the C++ runtime that the proved functions call, as their
 * manuals describe them. Each reads and writes exactly the bytes that the real function may. */
#include "runtime.h"

#include <stdarg.h>
#include <stdlib.h>

_Bool unwinding;
u8* thrown;

static u8 exception[64];
static u32 error_number;

/* Memory. */

void proof_memcpy_loop(u8* to, u8* from, u64 size) {
    for (u64 i = 0; i < size; ++i)
        to[i] = from[i];
}

void proof_memmove_loop(u8* to, u8* from, u64 size) {
    if ((u64)to <= (u64)from) {
        proof_memcpy_loop(to, from, size);
        return;
    }
    for (u64 i = size; i > 0; --i)
        to[i - 1] = from[i - 1];
}

void proof_memset_loop(u8* to, u8 byte, u64 size) {
    for (u64 i = 0; i < size; ++i)
        to[i] = byte;
}

u8* ir_memcpy(u8* to, u8* from, u64 size) {
    proof_memcpy_loop(to, from, size);
    return to;
}

u8* ir_memchr(u8* text, u32 byte, u64 size) {
    for (u64 i = 0; i < size; ++i)
        if (text[i] == (u8)byte)
            return text + i;
    return 0;
}

u32 ir_memcmp(u8* left, u8* right, u64 size) {
    for (u64 i = 0; i < size; ++i)
        if (left[i] != right[i])
            return left[i] < right[i] ? (u32)-1 : 1;
    return 0;
}

u64 ir_strnlen(u8* text, u64 size) {
    u64 length = 0;
    while (length < size && text[length] != 0)
        ++length;
    return length;
}

u64 ir_strlen(u8* text) {
    u64 length = 0;
    while (text[length] != 0)
        ++length;
    return length;
}

u8* ir_memmem(u8* text, u64 size, u8* part, u64 part_size) {
    for (u64 i = 0; part_size <= size && i <= size - part_size; ++i) {
        u64 same = 0;
        while (same < part_size && text[i + same] == part[same])
            ++same;
        if (same == part_size)
            return text + i;
    }
    return 0;
}

u32 proof_ctlz_32(u32 value) {
    return value == 0 ? 32 : (u32)__builtin_clz(value);
}

u32 proof_cttz_32(u32 value) {
    return value == 0 ? 32 : (u32)__builtin_ctz(value);
}

/* operator new and operator delete. */

#ifdef __CPROVER__
/* Memory of a fixed size is much easier to prove. The bytes asked for are its last, so each access
 * past them is found. */
#ifndef BLOCK
#define BLOCK 64
#endif
u8* ir__Znwm(u64 size) {
    RUNTIME_CLAIM(size <= BLOCK, "the memory asked for fits the model");
    ASSUME(size <= BLOCK);
    u8* memory = malloc(BLOCK);
    ASSUME(memory != 0); /* std::bad_alloc is not followed */
    return memory + (BLOCK - size);
}

void ir__ZdlPv(u8* memory) {
    if (memory != 0)
        free(memory - __CPROVER_POINTER_OFFSET(memory));
}
#else
u8* ir__Znwm(u64 size) {
    return malloc(size);
}

void ir__ZdlPv(u8* memory) {
    free(memory);
}
#endif

u8* ir__Znam(u64 size) {
    return ir__Znwm(size);
}

void ir__ZdlPvm(u8* memory, u64 size) {
    (void)size;
    ir__ZdlPv(memory);
}

void ir__ZdaPv(u8* memory) {
    ir__ZdlPv(memory);
}

/* Exceptions. Their objects are not followed. */

u8* ir___cxa_allocate_exception(u64 size) {
    (void)size;
    return exception;
}

void ir___cxa_free_exception(u8* object) {
    (void)object;
}

void ir___cxa_throw(u8* object, u8* type, u8* destructor) {
    (void)type, (void)destructor;
    thrown = object;
    unwinding = 1;
}

u8* ir___cxa_begin_catch(u8* object) {
    return object;
}

void ir___cxa_end_catch(void) {
}

void ir___cxa_rethrow(void) {
    unwinding = 1;
}

void ir__ZNSt12out_of_rangeC1EPKc(u8* object, u8* text) {
    (void)object, (void)text;
}

void ir__ZSt24__throw_out_of_range_fmtPKcz(u8* text, ...) {
    (void)text;
    unwinding = 1;
}

void ir__ZSt20__throw_length_errorPKc(u8* text) {
    (void)text;
    unwinding = 1;
}

void ir__ZSt19__throw_logic_errorPKc(u8* text) {
    (void)text;
    unwinding = 1;
}

void ir__ZSt17__throw_bad_allocv(void) {
    unwinding = 1;
}

void ir__ZSt28__throw_bad_array_new_lengthv(void) {
    unwinding = 1;
}

void ir__ZSt9terminatev(void) {
    RUNTIME_CLAIM(0, "std::terminate() is not called");
    ASSUME(0);
}

void ir__ZSt21__glibcxx_assert_failPKciS0_S0_(u8* file, u32 line, u8* function, u8* condition) {
    (void)file, (void)line, (void)function, (void)condition;
    RUNTIME_CLAIM(0, "the requirements of the standard library's functions hold");
    ASSUME(0);
}

u8* ir___errno_location(void) {
    return (u8*)&error_number;
}

/* snprintf(3) with the directives that the library uses for numbers: %d and %02X. */

static void put(u8* out, u64 size, u64* length, u8 byte) {
    if (*length + 1 < size)
        out[*length] = byte;
    ++*length;
}

static void put_decimal(u8* out, u64 size, u64* length, int number) {
    u8 digits[10];
    u32 rest = number < 0 ? 0u - (u32)number : (u32)number;
    u32 count = 0;
    if (number < 0)
        put(out, size, length, '-');
    do {
        digits[count++] = (u8)('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    while (count > 0)
        put(out, size, length, digits[--count]);
}

u32 ir_snprintf(u8* out, u64 size, u8* format, ...) {
    va_list arguments;
    u64 length = 0;
    va_start(arguments, format);
    while (*format != 0) {
        if (*format != '%') {
            put(out, size, &length, *format++);
        } else if (format[1] == 'd') {
            put_decimal(out, size, &length, va_arg(arguments, int));
            format += 2;
        } else {
            RUNTIME_CLAIM(format[1] == '0' && format[2] == '2' && format[3] == 'X',
                          "the directive is known");
            u32 number = va_arg(arguments, u32);
            RUNTIME_CLAIM(number < 256, "the number has two digits");
            put(out, size, &length, (u8) "0123456789ABCDEF"[number >> 4 & 15]);
            put(out, size, &length, (u8) "0123456789ABCDEF"[number & 15]);
            format += 4;
        }
    }
    va_end(arguments);
    if (size > 0)
        out[length < size ? length : size - 1] = 0;
    return (u32)length;
}

/* The inputs of a proof. */

#ifdef __CPROVER__
u64 nondet_u64(void);
u64 proof_unknown(void) {
    return nondet_u64();
}

void ir_proof_assume(_Bool condition) {
    ASSUME(condition);
}

u64 ir_proof_number(u64 most) {
    u64 number = nondet_u64();
    ASSUME(number <= most);
    return number;
}

u8* ir_proof_bytes(u64 size) {
    u8* bytes = malloc(size);
    ASSUME(bytes != 0);
    return bytes;
}
#endif
