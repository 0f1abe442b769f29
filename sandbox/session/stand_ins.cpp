// stand_ins.cpp - scripts that replace tools which do not work on a device.
#include "sandbox/session/stand_ins.h"

#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "sandbox/hardware/ports.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kProgramMode = 0755;
constexpr char kToolFolder[] = "/usr/sbin";  // scripts and sudo(8) expect the network tools here

// True if the user namespace maps only one user. Files of other users then belong to nobody.
bool KnowsOneUser() {
    unsigned long inside = 0, outside = 0, count = 0;
    std::ifstream("/proc/self/uid_map") >> inside >> outside >> count;
    return count == 1;
}

bool SudoWorks() {
    return !KnowsOneUser() && !FindProgram("sudo").empty();
}

bool EthtoolWorks() {
    return PortsKeepSpeed() && access((fs::path(kToolFolder) / "ethtool").c_str(), X_OK) == 0;
}

void AddAs(const fs::path& path, const fs::path& script, StandIns& stand_ins) {
    SampleFile file;
    file.path = path;
    file.mode = kProgramMode;
    file.text = ReadText(script);
    stand_ins.names.push_back(script.filename());
    stand_ins.files.push_back(file);
}

void Add(const fs::path& script, StandIns& stand_ins) {
    AddAs(fs::path(kStandInFolder) / script.filename(), script, stand_ins);
}

void AddTool(const fs::path& script, StandIns& stand_ins) {
    Add(script, stand_ins);
    SampleFile link;
    link.path = fs::path(kToolFolder) / script.filename();
    link.is_link = true;
    link.text = stand_ins.files.back().path;
    stand_ins.files.push_back(link);
}

}  // namespace

StandIns ChooseStandIns(const std::string& folder, bool has_agent) {
    const fs::path scripts = folder;
    StandIns stand_ins;
    if (!SudoWorks()) {
        AddTool(scripts / "sudo", stand_ins);
    }
    if (!EthtoolWorks()) {
        AddTool(scripts / "ethtool", stand_ins);
    }
    if (!FindProgram("busybox").empty()) {
        AddTool(scripts / "ifconfig", stand_ins);
        AddTool(scripts / "route", stand_ins);
    }
    if (!has_agent) {
        AddAs(velk::kSnmpScript, scripts / "snmpd", stand_ins);
    }
    return stand_ins;
}

}  // namespace sandbox
