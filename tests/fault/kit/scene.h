// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scene.h - the device that a request meets: its files, its cable and its adapter.
#ifndef TESTS_FAULT_KIT_SCENE_H_
#define TESTS_FAULT_KIT_SCENE_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/fake_daemon.h"
#include "support/fake_shell.h"
#include "velk.h"

namespace fault {

struct Scene {
    bool has_adapter = true;
    bool has_cable = false;
    bool uses_dhcp = false;       // both interfaces; otherwise both are static
    bool has_long_files = false;  // longer than one block of reading and writing
    bool has_old_result = false;  // the result file has an earlier output
};

// Every combination of the first three, and one with long files.
std::vector<Scene> AllScenes();
std::string NameOf(const Scene& scene);

// The files that requests change or remove, each with its text; nothing for a missing one.
using Files = std::map<std::string, std::optional<std::string>>;
Files ReadTargets();

// The configuration that the wireless daemon of a device begins with.
SMsgConf WirelessConfiguration();

// Returns the paths of the files in the library's scratch folders, without its lock files.
std::vector<std::string> RemainingFiles();

// Makes the device anew. During its lifetime, tools and the wireless daemon are fakes that answer
// within the library's own call, nothing waits, and only they use the recorder.
class Device {
  public:
    // Makes a device with these texts instead of the scene's. Child processes share a daemon with
    // its own thread only.
    explicit Device(const Scene& scene, const Files& files = {},
                    testkit::FakeDaemon::Turn turn = testkit::FakeDaemon::Turn::kInSelect);

    // Makes the real shell run the lines from now on.
    void UseRealTools() { shell_.reset(); }
    testkit::FakeDaemon& daemon() { return *daemon_; }
    // Returns the values of a daemon with its own thread when it has served all requests. The
    // daemon is restarted for that.
    SMsgConf RestartDaemon();

  private:
    void StartDaemon(testkit::FakeDaemon::Turn turn, const SMsgConf& conf);

    std::optional<testkit::FakeShell> shell_;
    std::optional<testkit::FakeDaemon> daemon_;
};

// Returns a PATH with a sudo(8) that runs sed(1) and nothing else. Privileged lines may edit files
// of this device, but must reach no service and no port: the machine's processes are visible here.
// Throws std::runtime_error if it cannot be made; nothing may be run then.
std::string PathWithHarmlessSudo();

// Writes the scene's files onto an emptied device.
void WriteFiles(const Scene& scene);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_SCENE_H_
