// main.cpp - velk-sandbox: a device on your desk.
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
#include "sandbox/session/enter.h"
#include "sandbox/session/session.h"
#include "sandbox/session/watch.h"
#include <CLI/CLI.hpp>

namespace {

namespace fs = std::filesystem;

constexpr char kDescription[] =
    "Runs a command, or a shell, on a device of its own: with the device's files and a network of\n"
    "its own, while the machine around it stays as it is.";
constexpr char kUsage[] =
    "Usage: velk-sandbox [OPTIONS] [-- COMMAND...]\n"
    "       velk-sandbox cable|adapter|router in|out [--name NAME]\n"
    "       velk-sandbox enter [--name NAME] [-- COMMAND...]\n"
    "       velk-sandbox watch [--name NAME]\n"
    "       velk-sandbox list\n";
constexpr char kFooter[] =
    "Exit status: the command's; 128 and the number of the signal that ended it; 125 when there "
    "is\n"
    "no device to be had, 126 when the command cannot be run, 127 when it is not found.";

constexpr char kWhichDevice[] = "Name of the device, if several are running";

// The parser does not know of the command, so its help would leave that out.
class HelpFormatter : public CLI::Formatter {
  public:
    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return kUsage;
    }
};

// What stands behind the first "--" is the command's, to the letter.
std::vector<std::string> TakeCommand(std::vector<std::string>& words) {
    const auto mark = std::ranges::find(words, "--");
    std::vector<std::string> command;
    if (mark != words.end()) {
        command.assign(mark + 1, words.end());
        words.erase(mark, words.end());
    }
    return command;
}

// Beside the program in a build folder, in the data folder once installed. A user who may not look
// there is refused later, with the reason.
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

// Its own description would stand beside the option's in the help.
CLI::Validator ExistingFolder() {
    CLI::Validator validator = CLI::ExistingDirectory;
    return validator.description("");
}

// What the words on the command line ask for.
struct Request {
    sandbox::Session session;
    std::string position;          // of a part that is moved
    std::function<int()> instead;  // of making a device
};

void AddName(CLI::App& app, Request& request, const char* description) {
    app.add_option("--name", request.session.name, description)->type_name("NAME");
}

CLI::App* AddVerb(CLI::App& app, Request& request, const std::string& name,
                  const std::string& description, const std::function<int()>& run) {
    CLI::App* verb = app.add_subcommand(name, description);
    verb->final_callback([&request, run] { request.instead = run; });
    return verb;
}

void AddMove(CLI::App& app, Request& request, const std::string& part,
             const std::string& description) {
    CLI::App* move = AddVerb(app, request, part, description, [&request, part] {
        sandbox::MoveHardware(part, request.position, request.session.name);
        return EXIT_SUCCESS;
    });
    move->add_option("POSITION", request.position, "Where it is to be")
        ->required()
        ->check(CLI::IsMember({"in", "out"}));
    AddName(*move, request, kWhichDevice);
}

int Enter(const sandbox::Session& session) {
    return sandbox::RunVisit({session.name, session.command, session.program_folder});
}

int Watch(const sandbox::Session& session) {
    if (session.name.empty() && sandbox::IsOnDevice()) {
        sandbox::WatchFiles();
    }
    return sandbox::RunThere(session.name, [] {
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
    AddMove(app, request, "cable", "Plug the cable of eth0 in, or pull it out");
    AddMove(app, request, "adapter", "Plug the wireless adapter eth1 in, or pull it out");
    AddMove(app, request, "router", "Plug the router of a real device in, or pull it out");
    AddName(*AddVerb(app, request, "enter", "Run a command, or a shell, on a running device",
                     [&session] { return Enter(session); }),
            request, kWhichDevice);
    AddName(*AddVerb(app, request, "watch", "Show each change of a device's file as it happens",
                     [&session] { return Watch(session); }),
            request, kWhichDevice);
    AddVerb(app, request, "list", "Name the running devices", List);
}

void AddOptions(CLI::App& app, Request& request) {
    sandbox::Session& session = request.session;
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(kFooter);
    auto* real = app.add_flag("--real", session.real,
                              "With the system's own tools and a router around; for root only");
    app.add_flag_callback(
           "--no-router", [&session] { session.router_in = false; }, "Start with the router out")
        ->needs(real);
    app.add_flag("--quiet", session.quiet, "Do not say at the start what this is");
    app.add_option("--writable", session.device.writable,
                   "Folder of the machine that stays writable; may be given again")
        ->type_name("DIR")
        ->expected(1)
        ->take_all()
        ->check(ExistingFolder());
    app.add_option("--rootfs", session.device.rootfs, "Folder with the device's files")
        ->type_name("DIR")
        ->check(ExistingFolder());
    AddName(app, request, "Name that other terminals reach the device by; a number at first");
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
    session.device.keep = FoldersInUse(program_folder);

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
    return request.instead ? request.instead() : sandbox::RunSession(session);
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
