// wait.h - waits whole seconds.
#ifndef VELK_BASE_WAIT_H_
#define VELK_BASE_WAIT_H_

namespace velk {

// Sleeps the whole time, measured by the monotonic clock. One sleep(3) call as a rule; the rest of
// one that a signal of the host program interrupts is waited for until the deadline.
void WaitSeconds(unsigned seconds);

}  // namespace velk

#endif  // VELK_BASE_WAIT_H_
