// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_blocks.cpp - proofs about lib/base/shell_blocks.h.
#include "lib/base/shell_blocks.cpp"

#include "tests/proof/proof.h"

namespace {

// The answers about the keywords of a line.
struct Line {
    bool has_if, has_then, has_else, has_fi;
    size_t position;
};
Line answers;

}  // namespace

namespace velk {

// Any answer that the comment in words.h allows. The proof find_word is about the function itself.
bool FindWord(std::string_view line, std::string_view word, bool comment_aware, size_t& position) {
    proof_claim(comment_aware, "keywords in comments do not count");
    position = answers.position;
    const bool is_word = word == "if"     ? answers.has_if
                         : word == "then" ? answers.has_then
                         : word == "else" ? answers.has_else
                                          : answers.has_fi;
    proof_assume(!is_word || (position < line.size() && word.size() < line.size() - position));
    return is_word;
}

}  // namespace velk

using namespace velk;

// The variable is named V here and the interface N. A line has any bytes and any keywords.
PROOF(shell_blocks, 6, "three lines of 4 bytes after the if, with any keywords") {
    ShellBlocks blocks("V", "N");
    bool in_block = false;
    bool in_then = false;
    bool in_else = false;
    bool matches = false;
    for (int i = 0; i < 3; ++i) {
        char* bytes = proof_bytes(6);
        answers = {proof_number(1) == 1, proof_number(1) == 1, proof_number(1) == 1,
                   proof_number(1) == 1, 0};
        bool names_variable = false;
        bool names_interface = false;
        for (size_t at = 2; at < 6; ++at) {
            names_variable = names_variable || bytes[at] == 'V';
            names_interface = names_interface || bytes[at] == 'N';
        }
        const bool runs = blocks.RunsNext({bytes, 6});
        if (!in_block && answers.has_if && names_variable) {
            in_block = true;
            matches = names_interface;
        }
        if (in_block && answers.has_fi) {
            in_block = in_then = in_else = false;
        } else if (in_block && !in_then && !in_else && answers.has_then) {
            in_then = true;
        } else if (in_then && answers.has_else) {
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
