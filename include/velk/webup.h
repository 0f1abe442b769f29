// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// webup.h - when the web contents updater runs.
#ifndef VELK_WEBUP_H_
#define VELK_WEBUP_H_

#include "velk/export.h"

struct _velk_request;

// The schedule (command 11) is the updater's lines in the crontab /var/cron/tabs/root, see
// crontab(5): those that contain "web_contents_updater". In the data area it is
//
//   byte 0  enum velk_schedule_type
//   byte 1  its value, unsigned: N for every hour that N divides, 1 for daily, the weekday from 1
//           (Sunday) to 7, the day of the month, or VELK_SCHEDULE_NONE for none
//   byte 2  the time: hour and minute in decimal with ":" between them, such as "08:30", and a NUL

// Reads the schedule of the updater's first line into the data area `out` (512 bytes), with the
// time as it is in the file, cut to 509 bytes, and a number cut to its byte. A number may begin
// with "-", and one of more than 32 bits counts as 0, as a missing one does. Without such a line
// the schedule is VELK_SCHEDULE_NONE. For VELK_SCHEDULE_NONE and VELK_SCHEDULE_HOURS the time is
// "00:00".
//
// Returns LIB_VELK_SUCCESS; LIB_VELK_INVALID_PARAMETER for a null `out`; LIB_VELK_FAILURE if the
// crontab cannot be read or the line names a month but no day, a schedule that this library never
// writes. Blocking: as long as reading one small file.
VELK_API int GetWebUp(const _velk_request& request, char* out);

// Removes the updater's lines and adds those of the schedule in request.data at the end of the
// file. Monthly on the 29th, 30th or 31st takes two lines: in place of a month without that day the
// updater runs on the first day of the next month; for the 29th this is March, in leap years too.
// The time must be two numbers, also for the types that do not use it. Neither the numbers nor the
// value of hourly and weekly are checked for their range. `out` is not used.
//
// Returns LIB_VELK_SUCCESS; LIB_VELK_FAILURE, with the crontab unchanged, for a malformed time, an
// unknown type, a day of the month outside 1 to 31, and if a file cannot be opened.
// Side effects: edits /var/cron/tabs/root as velk/frame.h describes. Blocking: as long as rewriting
// one small file.
VELK_API int SetWebUp(const _velk_request& request, char* out);

#endif  // VELK_WEBUP_H_
