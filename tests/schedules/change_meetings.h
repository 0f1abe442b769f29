// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_meetings.h - changes of velkctl that meet other programs, or their deadline.
#ifndef TESTS_SCHEDULES_CHANGE_MEETINGS_H_
#define TESTS_SCHEDULES_CHANGE_MEETINGS_H_

#include <memory>

#include "schedules/kit/explorer.h"

namespace schedules {

// An apply that must be confirmed, its guardian, and a program that sets another setting of the
// same file, sets the same setting, or puts a new file in place.
std::unique_ptr<Meeting> ApplyMeetsSetOfAnother();
std::unique_ptr<Meeting> ApplyMeetsSetOfTheSame();
std::unique_ptr<Meeting> ApplyMeetsEditor();

// A confirmation, the guardian of the change, and its deadline.
std::unique_ptr<Meeting> ConfirmMeetsDeadline();

}  // namespace schedules

#endif  // TESTS_SCHEDULES_CHANGE_MEETINGS_H_
