// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_password.h - changes the file of the users.
#ifndef WEB_SERVER_SET_PASSWORD_H_
#define WEB_SERVER_SET_PASSWORD_H_

#include <string>

namespace velkweb {

// Sets the password of a user, who is added if new: the line on standard input; at a terminal asks
// for it twice, without echo. Returns the exit status.
int SetPassword(const std::string& name);

// Removes a user. Returns the exit status.
int RemoveUser(const std::string& name);

}  // namespace velkweb

#endif  // WEB_SERVER_SET_PASSWORD_H_
