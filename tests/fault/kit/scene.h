// scene.h - the device that a request meets: its files, its cable and its adapter.
#ifndef TESTS_FAULT_KIT_SCENE_H_
#define TESTS_FAULT_KIT_SCENE_H_

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/fake_daemon.h"
#include "support/fake_shell.h"

namespace fault {

struct Scene {
    bool has_adapter = true;
    bool has_cable = false;
    bool uses_dhcp = false;       // both interfaces; otherwise both are static
    bool has_long_files = false;  // longer than one block of reading and writing
    bool has_old_result = false;  // what a tool printed before lies where tools print to
};

// Every combination of the first three, and one with long files.
std::vector<Scene> AllScenes();
std::string NameOf(const Scene& scene);

// The files that requests change or remove, and what stands in each; nothing for a missing one.
using Files = std::map<std::string, std::optional<std::string>>;
Files ReadTargets();

// What lies in the library's scratch places beside its lock files, by path.
std::vector<std::string> Leftovers();

// Makes the device anew. While it lives, tools and the wireless daemon are stand-ins that answer
// within the library's own call, nothing waits, and the recorder is theirs.
class Device {
  public:
    // With these texts in the place of the scene's.
    explicit Device(const Scene& scene, const Files& files = {});

    // From now on shell lines are run.
    void UseRealTools() { shell_.reset(); }
    testkit::FakeDaemon& daemon() { return *daemon_; }

  private:
    std::optional<testkit::FakeShell> shell_;
    std::optional<testkit::FakeDaemon> daemon_;
};

// A PATH whose sudo(8) runs sed(1) and nothing else: privileged lines may edit files of this
// device, but reach no service and no port, for the machine's processes are in sight here. Throws
// std::runtime_error when it cannot be made; nothing may be run then.
std::string PathWithHarmlessSudo();

// Writes the scene's files onto an emptied device.
void WriteFiles(const Scene& scene);

}  // namespace fault

#endif  // TESTS_FAULT_KIT_SCENE_H_
