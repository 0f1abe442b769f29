// wait.cpp - waits whole seconds.
#include "frame/wait.h"

#include <unistd.h>

namespace velk {

void WaitSeconds(unsigned seconds) {
    while (seconds > 0) {
        seconds = sleep(seconds);  // NOLINT(concurrency-mt-unsafe): sends no SIGALRM on Linux
    }
}

}  // namespace velk
