// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// proof.h - inputs and claims of the proofs. scripts/prove runs them.
#ifndef VELK_PROOF_PROOF_H_
#define VELK_PROOF_PROOF_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" {
// The text of a claim is a literal.
void proof_claim(bool condition, const char* text);  // holds for every input
void proof_reached(bool condition,
                   const char* text);  // holds for some input, so the proof is not empty
void proof_assume(bool condition);     // leaves all other inputs out
uint64_t proof_number(uint64_t most);  // any number up to `most`
char* proof_bytes(size_t size);        // new memory of exactly this size, with any bytes
}

// A function that scripts/prove calls: its name, the times a loop may run, and its inputs.
#define PROOF(name, loops, inputs) extern "C" void name()
// For all proofs of the source: an edit of the library's source, and a definition for runtime.c.
#define SMALLER(file, text, smaller_text)
#define RUNTIME(definition)

// Any text of up to kMost bytes, NULs included. It is at the end of its memory, so each read past
// it is noticed; a read before it is noticed for the longest texts.
template <size_t kMost>
std::string_view AnyText() {
    const size_t size = proof_number(kMost);
    return {proof_bytes(kMost) + (kMost - size), size};
}

#endif  // VELK_PROOF_PROOF_H_
