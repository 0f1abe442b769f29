// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_blocks.cpp - proofs about lib/base/shell_blocks.h.
#include "lib/base/shell_blocks.cpp"

#include "lib/base/words.cpp"
#include "tests/proof/proof.h"

using namespace velk;

namespace {

// Any line of up to 7 bytes with its newline, of the letters that matter.
std::string_view AnyLine() {
    const size_t size = 1 + proof_number(6);
    char* bytes = proof_bytes(7) + (7 - size);
    bytes[size - 1] = '\n';
    return {bytes, size};
}

bool Has(std::string_view line, std::string_view keyword) {
    return HasWord(line, keyword, true);
}

}  // namespace

// The variable is named V here and the interface N, so that a line has room for both.
PROOF(shell_blocks, 9, "three lines of up to 7 bytes with their newlines") {
    ShellBlocks blocks("V", "N");
    bool in_block = false;
    bool in_then = false;
    bool in_else = false;
    bool matches = false;
    for (int i = 0; i < 3; ++i) {
        const std::string_view line = AnyLine();
        const bool runs = blocks.RunsNext(line);
        const size_t word = line.find("if");
        if (!in_block && Has(line, "if") &&
            line.substr(word + 2).find('V') != std::string_view::npos) {
            in_block = true;
            in_then = in_else = false;
            matches = line.substr(word + 2).find('N') != std::string_view::npos;
        }
        if (in_block && Has(line, "fi")) {
            in_block = in_then = in_else = false;
        } else if (in_block && !in_then && !in_else && Has(line, "then")) {
            in_then = true;
        } else if (in_then && Has(line, "else")) {
            in_then = false;
            in_else = true;
        }
        proof_claim(in_block || runs, "a line outside blocks runs");
        proof_claim(!in_then || runs == matches,
                    "a line of the then branch runs for an interface that matches");
        proof_claim(!in_else || runs == !matches,
                    "a line of the else branch runs for another interface");
        proof_claim(in_then || in_else || runs,
                    "lines up to then, and the fi line, count as outside");
        proof_reached(i == 2 && in_else && runs, "an else branch that runs");
        proof_reached(i == 1 && in_then && !runs, "a then branch that does not run");
    }
}
