// leftovers.h - removes what a call leaves on the device that was ended in the middle.
#ifndef VELKCTL_LEFTOVERS_H_
#define VELKCTL_LEFTOVERS_H_

#include "velkctl/command.h"

namespace velkctl {

// A library call tidies up behind itself, unless its process is killed. This does it in its place,
// and is the only way in which velkctl removes files by itself: the reply socket and the semaphore
// of a query, the output of a tool, the copy of an edit. What another program may be using stays.
//
// `tools_ended` says that no program that the call has started is running any more.
void RemoveLeftovers(const Command& command, bool tools_ended);

}  // namespace velkctl

#endif  // VELKCTL_LEFTOVERS_H_
