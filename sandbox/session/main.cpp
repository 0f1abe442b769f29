// main.cpp - velk-sandbox: runs commands on a simulated device.
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sandbox/control/control_socket.h"
#include "sandbox/control/orders.h"
#include "sandbox/hardware/hardware_process.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/messages.h"
#include "sandbox/session/enter.h"
#include "sandbox/session/session.h"
#include "sandbox/session/watch.h"
#include <CLI/CLI.hpp>

namespace {

namespace fs = std::filesystem;

constexpr char kDescription[] =
    "Runs a command or a shell on a simulated device, with its own files and network.\n"
    "The machine around it stays unchanged.";
constexpr char kUsage[] =
    "Usage: velk-sandbox [OPTIONS] [-- COMMAND...]\n"
    "       velk-sandbox cable|adapter|router in|out [--name NAME]\n"
    "       velk-sandbox enter [--name NAME] [-- COMMAND...]\n"
    "       velk-sandbox watch [--name NAME]\n"
    "       velk-sandbox list\n";
constexpr char kFooter[] =
    "Exit status: that of the command, or 128 plus the number of the signal that ended it.\n"
    "  2    wrong usage\n"
    "  125  the device could not be made, reached or changed\n"
    "  126  the command cannot be run\n"
    "  127  the command is not found";

constexpr char kWhichDevice[] = "Name of the device; required if several are running";

// The parser does not handle the command, so its own usage line would omit it.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return kUsage;
    }
};

// Removes the words after the first "--" and returns them unchanged: they are the command.
std::vector<std::string> TakeCommand(std::vector<std::string>& words) {
    const auto mark = std::ranges::find(words, "--");
    std::vector<std::string> command;
    if (mark != words.end()) {
        command.assign(mark + 1, words.end());
        words.erase(mark, words.end());
    }
    return command;
}

// Returns the folder next to the program, as in a build folder, or the installed one. If it cannot
// be read, the error is reported later.
std::string DataFolder(const fs::path& program_folder, const char* name) {
    const fs::path installed = program_folder / "../share/velk-sandbox" / name;
    const fs::path built = program_folder / name;
    std::error_code unseen;
    return fs::is_directory(built, unseen) ? built : installed;
}

std::vector<std::string> FoldersInUse(const fs::path& program_folder) {
    std::error_code removed;
    const fs::path here = fs::current_path(removed);
    if (removed) {
        return {program_folder};
    }
    return {program_folder, here};
}

// Returns the parser's validator without its description, which would appear in the help.
CLI::Validator ExistingFolder() {
    CLI::Validator validator = CLI::ExistingDirectory;
    return validator.description("");
}

// A parsed command line.
struct Request {
    sandbox::Session session;
    std::string position;       // "in" or "out" of a part that is moved
    std::function<int()> verb;  // null: make a new device
};

void AddName(CLI::App& app, Request& request, const char* description) {
    app.add_option("--name", request.session.name, description)->type_name("NAME");
}

CLI::App* AddVerb(CLI::App& app, Request& request, const std::string& name,
                  const std::string& description, const std::function<int()>& run) {
    CLI::App* command = app.add_subcommand(name, description);
    command->final_callback([&request, run] { request.verb = run; });
    return command;
}

void AddMove(CLI::App& app, Request& request, const std::string& part,
             const std::string& description) {
    CLI::App* move = AddVerb(app, request, part, description, [&request, part] {
        sandbox::MoveHardware(part, request.position, request.session.name);
        return EXIT_SUCCESS;
    });
    move->add_option("POSITION", request.position, "The new position: in or out")
        ->required()
        ->check(CLI::IsMember({"in", "out"}));
    AddName(*move, request, kWhichDevice);
}

int Enter(const sandbox::Session& session) {
    return sandbox::RunEnter({session.name, session.command, session.program_folder});
}

int Watch(const sandbox::Session& session) {
    if (session.name.empty() && sandbox::IsOnDevice()) {
        sandbox::WatchFiles();
    }
    return sandbox::RunOnDevice(session.name, [] {
        sandbox::WatchFiles();
        return EXIT_SUCCESS;
    });
}

int List() {
    for (const std::string& name : sandbox::RunningDevices()) {
        (void)puts(name.c_str());
    }
    return EXIT_SUCCESS;
}

void AddVerbs(CLI::App& app, Request& request) {
    const sandbox::Session& session = request.session;
    AddMove(app, request, "cable", "Connect or disconnect the cable of eth0");
    AddMove(app, request, "adapter", "Connect or disconnect the wireless adapter eth1");
    AddMove(app, request, "router",
            "Connect or disconnect the router; devices made with --real only");
    AddName(*AddVerb(app, request, "enter", "Run a command or a shell on a running device",
                     [&session] { return Enter(session); }),
            request, kWhichDevice);
    AddName(*AddVerb(app, request, "watch", "Print each change of a device's files",
                     [&session] { return Watch(session); }),
            request, kWhichDevice);
    AddVerb(app, request, "list", "List the names of the running devices", List);
}

void AddOptions(CLI::App& app, Request& request) {
    sandbox::Session& session = request.session;
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(kFooter);
    auto* real = app.add_flag("--real", session.real,
                              "Use the system's own tools and simulate a router; root only");
    app.add_flag_callback(
           "--no-router", [&session] { session.router_in = false; },
           "Start with the router disconnected")
        ->needs(real);
    app.add_flag("--quiet", session.quiet, "Print no message at the start");
    app.add_option("--writable", session.device.writable,
                   "Folder of the machine that stays writable; can be repeated")
        ->type_name("DIR")
        ->expected(1)
        ->take_all()
        ->check(ExistingFolder());
    app.add_option("--rootfs", session.device.rootfs, "Folder with the device's files")
        ->type_name("DIR")
        ->check(ExistingFolder());
    AddName(app, request, "Name of the device; the first free number if not given");
    app.set_version_flag("--version", "velk-sandbox " VELK_SANDBOX_VERSION);
}

int Run(std::vector<std::string> words) {
    const fs::path program_folder = fs::read_symlink("/proc/self/exe").parent_path();
    Request request;
    sandbox::Session& session = request.session;
    session.program_folder = program_folder;
    session.command = TakeCommand(words);
    session.device.rootfs = DataFolder(program_folder, "rootfs");
    session.stand_in_folder = DataFolder(program_folder, "stand-ins");
    session.real_rootfs = DataFolder(program_folder, "real-rootfs");
    session.router_folder = DataFolder(program_folder, "router");
    session.device.bind_folders = FoldersInUse(program_folder);

    CLI::App app(kDescription, "velk-sandbox");
    AddOptions(app, request);
    AddVerbs(app, request);
    std::ranges::reverse(words);  // as the parser takes them
    try {
        app.parse(words);
    } catch (const CLI::Success& answer) {
        return app.exit(answer);
    } catch (const CLI::ParseError& error) {
        sandbox::PrintMessage(error.what());
        return sandbox::kUsageError;
    }
    return request.verb ? request.verb() : sandbox::RunSession(session);
}

}  // namespace

int main(int argc, char** argv) {
    (void)setlocale(LC_CTYPE, "");  // for Printable()
    try {
        return Run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        sandbox::PrintFailure(error);
        return sandbox::kSandboxFailed;
    }
}
