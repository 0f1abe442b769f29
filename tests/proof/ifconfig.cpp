// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ifconfig.cpp - proofs about the scanner of lib/wired/ifconfig.cpp.
#include "lib/wired/ifconfig.cpp"

#include "tests/proof/proof.h"

using namespace velk;

PROOF(ifconfig_block, 8, "three lines of up to 3 bytes, a name of up to 2") {
    const std::string_view name = AnyText<2>();
    BlockScanner scanner(name);
    bool inside = false;
    for (int i = 0; i < 3; ++i) {
        const std::string_view line = AnyText<3>();
        const bool was_inside = inside;
        const bool in_block = scanner.IsInBlock(line);
        const bool is_header = line.size() >= name.size() && line.substr(0, name.size()) == name;
        if (!line.empty() || !inside) {
            inside = is_header || (inside && line[0] == ' ');
        }
        proof_claim(in_block == (inside && !(was_inside && line.empty())),
                    "a header with the name begins a block, and blanks continue it");
        proof_reached(i == 2 && in_block && !is_header, "a line that continues a block");
        proof_reached(i == 1 && was_inside && !in_block && !line.empty(), "another interface");
    }
}

PROOF(ifconfig_value, 12, "a line of up to 7 bytes, a key of up to 2") {
    const std::string_view line = AnyText<7>();
    const std::string_view key = AnyText<2>();
    static char out[VELK_DATA_SIZE];
    out[0] = '?';
    PutValue(line, key, out);
    const size_t found = line.find(key);
    if (found == std::string_view::npos) {
        proof_claim(out[0] == '?', "without the key nothing is written");
        proof_reached(line.size() == 7, "a line without the key");
        return;
    }
    const size_t start = found + key.size();
    size_t length = 0;
    while (start + length < line.size() && line[start + length] != ' ') {
        ++length;
    }
    const size_t any = proof_number(7);
    proof_claim(any >= length || out[any] == line[start + any],
                "the text after the key is written");
    proof_claim(out[length] == '\0', "it ends before the first blank or with the line");
    proof_reached(length == 3 && start == 3 && line.size() == 7, "a value within the line");
    proof_reached(length == 0 && key.size() == 2, "an empty value");
}
