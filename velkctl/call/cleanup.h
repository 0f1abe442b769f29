// cleanup.h - what a call leaves on the device that was ended in the middle.
#ifndef VELKCTL_CALL_CLEANUP_H_
#define VELKCTL_CALL_CLEANUP_H_

#include <string>

#include "velkctl/call/command.h"
#include "velkctl/report/report.h"

namespace velkctl {

// A library call tidies up behind itself, unless its process is killed. This does it in its place,
// and is the only way in which velkctl removes files by itself: the reply socket and the semaphore
// of a query, the output of a tool, the copies of the command's edits. What another program may be
// using stays, and so does the copy of an edit whose file was cut: it has what the file lost.
//
// `tools_ended` says that no program that the call has started is running any more.
void RemoveLeftovers(const Command& command, bool tools_ended);

// Notes which edits the command is about to lose: of files that were cut while being copied, as
// when the power went, and that it edits as they are, in a new copy. `what` is being set, in words.
void TellOfUnfinishedEdits(const Command& command, const std::string& what, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_CLEANUP_H_
