// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// identity.h - the administrator and the location of the device.
#ifndef VELK_IDENTITY_H_
#define VELK_IDENTITY_H_

#include <string>

#include "velk/export.h"

struct _velk_request;

// Administrator (command 2) and location (command 3) are texts of at most 512 bytes, of which a get
// returns 511. They are in the settings file /var/libvelk/libvelk, which must already exist, in
// lines that begin with "ADMINISTRATOR=" and "LOCATION="; the value is the rest of the line, as it
// is.

// Copies the value of the first line of the setting of request.command_id into the data area `out`
// (512 bytes) as a NUL-terminated text, cut to 511 bytes. Nothing is written if no line has it.
//
// Returns LIB_VELK_SUCCESS; LIB_VELK_INVALID_PARAMETER for a null `out` and, logged as
// "LIB_VELK_INVALID_PARAMETER = %d", for any other id; LIB_VELK_FAILURE, logged as "GetSettingFile
// ifstream" with errno, if the file cannot be read. Blocking: as long as reading one small file.
VELK_API int GetSettingFile(const _velk_request& request, char* out);

// Stores the text of request.data as the value of the setting of request.command_id, in every line
// of it or in a new last one, and passes it to the SNMP daemon: in every line of
// /usr/local/share/etc/snmp/snmpd.conf, see snmpd.conf(5), that contains "syscontact" or
// "syslocation", the rest of the line becomes the value, escaped with GetEscapeString(), or a pair
// of double quotes if it is empty. A missing directive is not added.
//
// sed(1) runs in the program's locale: where a byte is no character of it, that byte and the rest
// of the line stay. In a locale that is neither C, POSIX nor UTF-8 no SNMP line is run for a text
// with a byte above 0x7f, because the encoding may swallow its escapes; this is logged as
// "SetSettingFile no SNMP line".
//
// The text is not checked. A text with a newline makes two lines, and leaves the SNMP daemon's file
// unchanged. A program that takes texts from its users must refuse a text that contains
// "syscontact" or "syslocation": a set of the other setting would cut it. `out` is not used.
//
// Returns LIB_VELK_SUCCESS, even if an SNMP step fails; LIB_VELK_INVALID_PARAMETER for
// any other id; LIB_VELK_FAILURE if a file cannot be opened, logged as "SetSettingFile ifstream"
// (the settings file) or "SetSettingFile ofstream" (its edit copy) with errno. The SNMP daemon is
// then left alone.
// Side effects: edits /var/libvelk/libvelk as velk/frame.h describes, then runs "sudo sed -i ..."
// on the SNMP daemon's file and "sudo /etc/init.d/snmpd restart > /dev/null 2>&1". Blocking: as
// long as these take, including the restart of the SNMP daemon.
VELK_API int SetSettingFile(const _velk_request& request, char* out);

// Returns the text with backslashes, ampersands, both kinds of quotes and slashes escaped, so that
// it is literal in the replacement of "sed 's/.../.../'" between single quotes of sh(1). The
// result is up to four times as long as the text.
VELK_API std::string GetEscapeString(const std::string& text);

// Returns the text with every `from` replaced by `to`, from left to right; replacements are not
// searched again. An empty `from` is never found.
VELK_API std::string ReplaceAll(std::string text, const std::string& from, const std::string& to);

#endif  // VELK_IDENTITY_H_
