// stand_ins.h - scripts on the device in place of tools that do not work there.
#ifndef SANDBOX_SESSION_STAND_INS_H_
#define SANDBOX_SESSION_STAND_INS_H_

#include <string>
#include <vector>

#include "sandbox/device/sample_files.h"

namespace sandbox {

struct StandIns {
    std::vector<std::string> names;
    std::vector<SampleFile> files;
};

// Those that this user needs on this machine, read from `folder`; one is for the SNMP agent, unless
// the device has its own. Call it before anything is mounted. Throws Failure.
StandIns ChooseStandIns(const std::string& folder, bool has_agent);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_STAND_INS_H_
