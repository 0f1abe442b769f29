// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// outcome_table.h - counts and prints the outcomes of faults, as docs/reliability.md shows them.
#ifndef TESTS_FAULT_KIT_OUTCOME_TABLE_H_
#define TESTS_FAULT_KIT_OUTCOME_TABLE_H_

#include <map>
#include <string>

#include "fault/kit/trial.h"

namespace fault {

// The files, or the wireless configuration, after a request that changes some.
enum class FilesAre { kNoneToChange, kBefore, kAfter, kBetween };

FilesAre Judge(const Reference& reference, const Outcome& outcome);

class OutcomeTable {
  public:
    static OutcomeTable& Get();

    void AddRequest() { ++requests_; }
    void Add(const Fault& fault, const Reference& reference, const Outcome& outcome);
    // Prints nothing if nothing was added.
    void Print() const;

  private:
    struct Row {
        int injected = 0;
        std::map<int, int> results;
        std::map<FilesAre, int> files;
    };

    static void PrintRow(const std::string& name, const Row& row);

    int requests_ = 0;
    std::map<std::string, Row> rows_;
};

}  // namespace fault

#endif  // TESTS_FAULT_KIT_OUTCOME_TABLE_H_
