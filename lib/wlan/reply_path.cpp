// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// reply_path.cpp - the path at which the library gets the wireless daemon's replies.
#include "lib/wlan/reply_path.h"

#include <cerrno>
#include <cstdio>

#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/log.h"
#include "lib/base/paths.h"

namespace velk {

ReplyPathOwner OwnerOfReplyPath() {
    struct stat facts {};
    if (lstat(kReplySocket, &facts) == -1) {
        return ReplyPathOwner::kNone;
    }
    return facts.st_uid == geteuid() ? ReplyPathOwner::kCaller : ReplyPathOwner::kOther;
}

bool ClearReplyPath() {
    if (OwnerOfReplyPath() != ReplyPathOwner::kOther || remove(kReplySocket) == 0) {
        return true;
    }
    LogErrno("QueryWlanDaemon remove errno=%d:%s", errno);
    return false;
}

}  // namespace velk
