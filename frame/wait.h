// wait.h - waits whole seconds.
#ifndef VELK_FRAME_WAIT_H_
#define VELK_FRAME_WAIT_H_

namespace velk {

// Sleeps the whole time, also when signals of the host program interrupt sleep(3).
void WaitSeconds(unsigned seconds);

}  // namespace velk

#endif  // VELK_FRAME_WAIT_H_
