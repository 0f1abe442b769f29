// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ntp.h - time synchronisation: the crontab entry that runs the time client, and its last result.
#ifndef VELK_NTP_H_
#define VELK_NTP_H_

#include <string>

#include "velk/export.h"

struct _velk_request;

// The clock is set by a line of the crontab /var/cron/tabs/root, see crontab(5), that must already
// be there. It runs the one-shot client ntpdate(8), with its options, the server and a redirection
// of its output into the result log /var/libvelk/ntp.log:
//
//   0 * * * * /usr/bin/ntpdate -u 192.168.0.1 > /var/libvelk/ntp.log
//
// Every line that contains "ntpdate" counts as such an entry, a comment too. It is active if no "#"
// precedes "ntpdate".
//
// Editing is done as velk/frame.h describes, and takes effect when cron(8) reads the crontab again.
// Blocking: as long as reading or rewriting one small file.

// ---- Commands ----------------------------------------------------------------------------------

// Reads the setting of request.command_id into the data area `out` (512 bytes): method (6), server
// (9) or last result (10). The functions below describe the formats.
//
// Returns the result of the setting's function; LIB_VELK_INVALID_PARAMETER for a null `out` and for
// any other id.
VELK_API int GetNtp(const _velk_request& request, char* out);

// Changes the setting of request.command_id to the value in request.data: method (6) or server (9).
// `out` is not used.
//
// Returns the result of the setting's function; LIB_VELK_INVALID_PARAMETER for any other id.
VELK_API int SetNtp(const _velk_request& request, char* out);

// ---- The crontab entry -------------------------------------------------------------------------

// Writes into out[0] whether some entry is active: VELK_ON, or VELK_OFF if none is or there is no
// entry. Returns LIB_VELK_SUCCESS; LIB_VELK_INVALID_PARAMETER for a null `out`; LIB_VELK_FAILURE,
// logged as "GetNtpMethod ifstream" with errno, if the crontab cannot be read.
VELK_API int GetNtpMethod(const _velk_request& request, char* out);

// Switches every entry by request.data[0]: VELK_ON deletes the line's first "#" if one
// precedes "ntpdate", VELK_OFF puts one into column one if none does, and removes the result log
// with DeleteNtpLog(). `out` is not used.
//
// Returns LIB_VELK_SUCCESS, also without an entry; LIB_VELK_INVALID_PARAMETER for any other byte,
// LIB_VELK_FAILURE if a file cannot be opened.
// Side effects: edits /var/cron/tabs/root.
VELK_API int SetNtpMethod(const _velk_request& request, char* out);

// Writes the server of the first entry, active or not, into the data area `out` as a NUL-terminated
// text of at most 511 bytes; empty if there is no entry or no server in it. Returns
// LIB_VELK_SUCCESS; LIB_VELK_INVALID_PARAMETER for a null `out`; LIB_VELK_FAILURE if the crontab
// cannot be read.
VELK_API int GetNtpIp(const _velk_request& request, char* out);

// Replaces the server of every entry by the text of request.data, with ChangeNtpdate(). The text is
// not checked. An entry that ends with its server is joined with the next line: the
// redirection must be there. `out` is not used.
//
// Returns LIB_VELK_SUCCESS, also without an entry; LIB_VELK_FAILURE if a file cannot be opened.
// Throws the exceptions of ChangeNtpdate(); the crontab is then unchanged.
// Side effects: edits /var/cron/tabs/root.
VELK_API int SetNtpIp(const _velk_request& request, char* out);

// Sets `server` to the server of a line: after "ntpdate", the first word that begins with a letter
// or a digit, unless a word with ">" comes first. Words are separated by blanks alone; a
// newline belongs to its word. Leaves `server` unchanged if there is none. Returns
// LIB_VELK_SUCCESS.
VELK_API int GetNtpdate(const std::string& line, std::string& server);

// Replaces the first occurrence of the text of the line's server by `server`. A program that takes
// servers from its users must refuse a server with a text that occurs earlier on the line, such as
// "ntp" or "usr", and any set while the present server is such a text: the command that cron runs
// would be changed.
//
// A line without a server gets it before the blank that precedes the first ">", or before the ">"
// itself if there is no blank between it and the line's first character. No blank is added: the
// server is joined to the preceding word unless two blanks precede the ">". If that word is
// "ntpdate", the server is still read back. Returns LIB_VELK_SUCCESS.
//
// Throws std::out_of_range("basic_string::at") if the line has neither a server nor ">".
VELK_API int ChangeNtpdate(std::string& line, const std::string& server);

// ---- The result log ----------------------------------------------------------------------------

// Writes into out[0] the result in the last line of the result log: VELK_NTP_REACHED if it contains
// "time server" from its 12th character on, else VELK_NTP_NOT_REACHED, also for an empty log;
// VELK_NTP_NO_RESULT if there is no log. Returns LIB_VELK_SUCCESS; LIB_VELK_INVALID_PARAMETER
// for a null `out`.
VELK_API int GetNtpCommunicate(const _velk_request& request, char* out);

// Removes the result log with "rm /var/libvelk/ntp.log". The result is not reported;
// without a log rm(1) writes an error to the program's standard error.
VELK_API void DeleteNtpLog();

#endif  // VELK_NTP_H_
