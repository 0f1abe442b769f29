// device.h - the device, as the verbs see it: settings to read and to change.
#ifndef VELKCTL_CALL_DEVICE_H_
#define VELKCTL_CALL_DEVICE_H_

#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/call/command.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data.h"

namespace velkctl {

// Every command of a verb goes this way: with the patience that its user has, and so that a signal
// leaves nothing behind.
//
// SIGINT, SIGTERM, SIGHUP and SIGQUIT do not end velkctl in the middle of what would leave
// something on the device. What is read from files alone leaves nothing, and is ended at once;
// anything else runs in a process of its own, which is let finish where that takes no time, or else
// ended and tidied up after. Then velkctl ends by the signal: no call returns.
class Device {
  public:
    Device(const Patience& patience, Report& report) : patience_(patience), report_(report) {}

    Answer Get(const Setting& setting) const;
    Answer Set(const Setting& setting, const Data& value) const;

    // Runs the command with these data bytes. `what` is done meanwhile, in words for a person at a
    // terminal: "restart of eth0".
    Answer Execute(const Command& command, const Data& data, const std::string& what) const;

  private:
    const Patience patience_;
    Report& report_;
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_DEVICE_H_
