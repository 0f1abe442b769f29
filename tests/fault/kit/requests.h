// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// requests.h - the requests of every command, with data for each of its branches.
#ifndef TESTS_FAULT_KIT_REQUESTS_H_
#define TESTS_FAULT_KIT_REQUESTS_H_

#include <ostream>
#include <string>
#include <vector>

#include "velk.h"

namespace fault {

struct Request {
    std::string name;  // "set 102 eth0"
    _velk_request request;
};

// Prints the name for GoogleTest, which would otherwise print the padding too.
inline void PrintTo(const Request& request, std::ostream* out) {
    *out << request.name;
}

// The requests of one row of the dispatch tables and one interface it allows; one name.
using Group = std::vector<Request>;

// True if the set or restart command has data here.
bool HasData(uint32_t id);

// A group for every row and every interface it allows.
std::vector<Group> AllRequests();
std::vector<Group> SetRequests();

// Returns the name of the group's requests as the name of a test: "set_102_eth0".
std::string TestName(const Group& group);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_REQUESTS_H_
