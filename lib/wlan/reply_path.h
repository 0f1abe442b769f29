// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reply_path.h - the path at which the library gets the wireless daemon's replies.
#ifndef VELK_WLAN_REPLY_PATH_H_
#define VELK_WLAN_REPLY_PATH_H_

namespace velk {

// The owner of the file at the path. Nobody but its owner and root can remove it from a sticky
// folder.
enum class ReplyPathOwner { kNone, kCaller, kOther };
ReplyPathOwner OwnerOfReplyPath();

// Removes another user's file from the path. Returns false, after a log line, if it is still there.
bool ClearReplyPath();

}  // namespace velk

#endif  // VELK_WLAN_REPLY_PATH_H_
