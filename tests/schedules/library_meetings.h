// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_meetings.h - programs that call the library at the same time.
#ifndef TESTS_SCHEDULES_LIBRARY_MEETINGS_H_
#define TESTS_SCHEDULES_LIBRARY_MEETINGS_H_

#include <memory>

#include "schedules/kit/explorer.h"

namespace schedules {

// Two gets that read the output of different tools.
std::unique_ptr<Meeting> GetMeetsGet();
// A get of a setting and a set of another one in the same file, or of the same one.
std::unique_ptr<Meeting> GetMeetsSetOfAnother();
std::unique_ptr<Meeting> GetMeetsSetOfTheSame();
std::unique_ptr<Meeting> SetMeetsSetOfAnother();
std::unique_ptr<Meeting> SetMeetsSetOfTheSame();

}  // namespace schedules

#endif  // TESTS_SCHEDULES_LIBRARY_MEETINGS_H_
