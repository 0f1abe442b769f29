// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - velk-sandbox: runs commands on a simulated device.
#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/control/control_socket.h"
#include "sandbox/control/orders.h"
#include "sandbox/hardware/hardware_process.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/messages.h"
#include "sandbox/session/command_words.h"
#include "sandbox/session/enter.h"
#include "sandbox/session/session.h"
#include "sandbox/session/usage.h"
#include "sandbox/session/watch.h"
#include <CLI/CLI.hpp>

namespace {

namespace fs = std::filesystem;

constexpr char kWhichDevice[] = "Name of the device; needed if several run";

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

std::string CompletionFolder(const fs::path& program_folder) {
    const fs::path built = program_folder / "completion";
    std::error_code unseen;
    return fs::is_directory(built, unseen)
               ? built
               : program_folder / "../share/bash-completion/completions";
}

uint16_t PortIn(const std::string& word) {
    uint16_t port = 0;
    const char* end = word.data() + word.size();
    if (const auto parsed = std::from_chars(word.data(), end, port);
        parsed.ec != std::errc() || parsed.ptr != end) {
        throw sandbox::WrongUsage("--web: '" + word + "' is not a port",
                                  "give a number up to 65535, or none for a free port");
    }
    return port;
}

// Returns the program next to this one, or the installed one.
std::string WebProgram(const fs::path& program_folder) {
    const fs::path built = program_folder / "velk-web";
    std::error_code unseen;
    return fs::exists(built, unseen) ? built : program_folder / "../sbin/velk-web";
}

std::string WebFolder(const fs::path& program_folder) {
    const fs::path built = program_folder / "web-page/page";
    std::error_code unseen;
    return fs::is_directory(built, unseen) ? built : program_folder / "../share/velk-web/page";
}

CLI::Validator ExistingFolder(const std::string& option) {
    return {[option](const std::string& path) {
                std::error_code unseen;
                if (!fs::is_directory(path, unseen)) {
                    throw sandbox::WrongUsage(option + ": there is no folder '" + path + "'",
                                              "give a folder that exists");
                }
                return std::string();
            },
            ""};
}

void UseRootfs(const std::string& path, sandbox::Session& session) {
    std::error_code unseen;
    if (!fs::exists(path, unseen)) {
        throw sandbox::WrongUsage("--rootfs: there is no folder or file '" + path + "'",
                                  "give a folder or file that exists");
    }
    if (fs::is_directory(path, unseen)) {
        session.device.rootfs = path;
    } else {
        session.hosts_file = std::exchange(session.device.rootfs, {}) + "/etc/hosts";
        session.image_file = path;
    }
}

// A parsed command line.
struct Request {
    sandbox::Session session;
    std::string position;       // "in" or "out" of a part that is moved
    std::function<int()> verb;  // null: make a new device
};

// An empty name would mean the first free number, or the only device.
CLI::Validator NonEmptyName() {
    return {[](const std::string& name) {
                return name.empty() ? "the name is empty; leave --name out, or give a name" : "";
            },
            ""};
}

void AddName(CLI::App& app, Request& request, const char* description) {
    app.add_option("--name", request.session.name, description)
        ->type_name("NAME")
        ->check(NonEmptyName());
}

CLI::App* AddVerb(CLI::App& app, Request& request, const std::string& name,
                  const std::string& description, const std::function<int()>& run) {
    CLI::App* command = app.add_subcommand(name, description);
    command->final_callback([&request, run] { request.verb = run; });
    return command;
}

void RefuseOtherPosition(const std::string& part, const std::string& position) {
    if (position == "in" || position == "out") {
        return;
    }
    throw sandbox::WrongUsage(position.empty()
                                  ? part + ": in or out is missing"
                                  : part + ": '" + position + "' is neither in nor out",
                              "velk-sandbox " + part + " in, or velk-sandbox " + part + " out");
}

void AddMove(CLI::App& app, Request& request, const std::string& part,
             const std::string& description) {
    CLI::App* move = app.add_subcommand(part, description);
    move->add_option("POSITION", request.position, "in or out");
    move->final_callback([&request, part] {
        RefuseOtherPosition(part, request.position);
        request.verb = [&request, part] {
            sandbox::MoveHardware(part, request.position, request.session.name);
            return EXIT_SUCCESS;
        };
    });
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
    if (const std::string here = sandbox::ThisDevice(); !here.empty()) {
        sandbox::PrintMessage("this is device " + here);
        sandbox::PrintDetail("listed are the devices started on it");
    }
    for (const std::string& name : sandbox::RunningDevices()) {
        (void)puts(name.c_str());
    }
    return EXIT_SUCCESS;
}

int ShowHelp(const CLI::App& app) {
    // App::help() would show the help of the chosen verb.
    const std::string help =
        app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    (void)fputs(help.c_str(), stdout);
    return EXIT_SUCCESS;
}

void AddVerbs(CLI::App& app, Request& request) {
    const sandbox::Session& session = request.session;
    AddMove(app, request, "cable", "Connect or disconnect the cable of eth0");
    AddMove(app, request, "adapter", "Connect or disconnect the wireless adapter eth1");
    AddMove(app, request, "router", "Connect or disconnect the router of --real");
    AddName(*AddVerb(app, request, "enter", "Run a command or a shell on a running device",
                     [&session] { return Enter(session); }),
            request, kWhichDevice);
    AddName(*AddVerb(app, request, "watch", "Print each change of a device's files",
                     [&session] { return Watch(session); }),
            request, kWhichDevice);
    AddVerb(app, request, "list", "List the names of the running devices", List);
    AddVerb(app, request, "help", "Show this help", [&app] { return ShowHelp(app); });
}

void AddOptions(CLI::App& app, Request& request) {
    sandbox::Session& session = request.session;
    auto* real =
        app.add_flag("--real", session.real, "Use the system's own tools, and a router; root only");
    app.add_flag_callback(
           "--no-router", [&session] { session.router_in = false; },
           "With --real: start with the router disconnected")
        ->needs(real);
    app.add_flag("--quiet", session.quiet, "Print no message at the start");
    app.add_option_function<std::string>(
           "--web", [&session](const std::string& word) { session.web_port = PortIn(word); },
           "Serve the settings page on a port of 127.0.0.1")
        ->type_name("[PORT]")
        ->expected(0, 1)
        ->default_str("0");
    app.add_option("--writable", session.device.writable,
                   "Folder that stays writable; can be repeated")
        ->type_name("DIR")
        ->expected(1)
        ->take_all()
        ->check(ExistingFolder("--writable"));
    app.add_option_function<std::string>(
           "--rootfs", [&session](const std::string& path) { UseRootfs(path, session); },
           "Folder, tar archive or capture with the device's files")
        ->type_name("DIR|FILE");
    AddName(app, request, "Name of the device; otherwise the first free number");
}

// Returns a session with the folders that belong to this program.
sandbox::Session NewSession() {
    const fs::path program_folder = fs::read_symlink("/proc/self/exe").parent_path();
    sandbox::Session session;
    session.program_folder = program_folder;
    session.device.rootfs = DataFolder(program_folder, "rootfs");
    session.stand_in_folder = DataFolder(program_folder, "stand-ins");
    session.real_rootfs = DataFolder(program_folder, "real-rootfs");
    session.router_folder = DataFolder(program_folder, "router");
    session.web_page.program = WebProgram(program_folder);
    session.web_page.folder = WebFolder(program_folder);
    session.completion_folder = CompletionFolder(program_folder);
    session.device.bind_folders = FoldersInUse(program_folder);
    return session;
}

int Run(std::vector<std::string> words) {
    Request request{.session = NewSession(), .position = {}, .verb = {}};
    CLI::App app;
    sandbox::SetHelp(app);
    AddOptions(app, request);
    AddVerbs(app, request);
    request.session.command = sandbox::TakeCommand(app, words);
    std::ranges::reverse(words);  // as the parser takes them
    try {
        app.parse(words);
    } catch (const CLI::Success& answer) {
        return app.exit(answer);
    } catch (const CLI::ParseError& error) {
        sandbox::PrintUsageError(app, error);
        return sandbox::kUsageError;
    }
    return request.verb ? request.verb() : sandbox::RunSession(std::move(request.session));
}

}  // namespace

int main(int argc, char** argv) {
    (void)setlocale(LC_CTYPE, "");  // for TerminalLine()
    try {
        return Run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        sandbox::PrintFailure(error);
        return sandbox::kSandboxFailed;
    }
}
