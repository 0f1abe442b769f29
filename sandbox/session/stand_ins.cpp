// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

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

SampleFile ScriptAt(const fs::path& path, const fs::path& script) {
    SampleFile file;
    file.path = path;
    file.mode = kProgramMode;
    file.text = ReadText(script);
    return file;
}

void AddTool(const fs::path& script, std::vector<SampleFile>& files) {
    SampleFile link;
    link.path = fs::path(kToolFolder) / script.filename();
    link.kind = FileKind::kLink;
    link.text = fs::path(kStandInFolder) / script.filename();
    files.push_back(ScriptAt(link.text, script));
    files.push_back(link);
}

}  // namespace

std::vector<SampleFile> ChooseStandIns(const std::string& folder, bool has_agent) {
    const fs::path scripts = folder;
    std::vector<SampleFile> files;
    if (!SudoWorks()) {
        AddTool(scripts / "sudo", files);
    }
    if (!EthtoolWorks()) {
        AddTool(scripts / "ethtool", files);
    }
    if (!FindProgram("busybox").empty()) {
        AddTool(scripts / "ifconfig", files);
        AddTool(scripts / "route", files);
    }
    if (!has_agent) {
        files.push_back(ScriptAt(velk::kSnmpScript, scripts / "snmpd"));
    }
    return files;
}

}  // namespace sandbox
