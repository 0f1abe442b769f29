// library_call.h - the one way from velkctl to the device: a command of the library.
#ifndef VELKCTL_CALL_LIBRARY_CALL_H_
#define VELKCTL_CALL_LIBRARY_CALL_H_

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/text/data.h"

namespace velkctl {

// Runs the command with these data bytes, however long it takes.
Answer CallLibrary(const Command& command, const Data& data = {});

}  // namespace velkctl

#endif  // VELKCTL_CALL_LIBRARY_CALL_H_
