// main.cpp - wland: a wireless daemon for the desk.
#include <chrono>
#include <cmath>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "sandbox/wland/background.h"
#include "sandbox/wland/log.h"
#include "sandbox/wland/server.h"
#include <CLI/CLI.hpp>

namespace {

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

constexpr char kDescription[] =
    "Answers programs as the device's wireless daemon does: keeps a configuration and reports it\n"
    "and the adapter's state, well or badly.";
constexpr char kFooter[] =
    "Reply modes: normal; silent, none at all; short, the first 40 bytes; empty, no byte; late,\n"
    "after a delay; garbage, 240 bytes 0xa5. Ends with SIGTERM or SIGINT.\n"
    "Exit status: 0 when it was ended so, 1 when it cannot run, 2 for wrong usage.";

struct Options {
    std::string reply = "normal";
    std::string tell;
    double delay = 0;
    bool has_delay = false;
    std::string pid_file;
    bool background = false;
    bool verbose = false;

    std::optional<std::chrono::milliseconds> Delay() const {
        if (!has_delay) {
            return std::nullopt;
        }
        return std::chrono::milliseconds(std::llround(delay * 1000));
    }
};

// CLI::Range lets "nan" pass.
std::string CheckDelay(const std::string& text) {
    constexpr double kLongest = 3600;
    double seconds = 0;
    const bool is_number = CLI::detail::lexical_cast(text, seconds);
    return is_number && seconds >= 0 && seconds <= kLongest
               ? ""
               : text + " is not a number of seconds from 0 to 3600";
}

void AddOptions(CLI::App& app, Options& options) {
    const CLI::IsMember is_mode(wland::ReplyModeNames());
    app.footer(kFooter);
    CLI::Option* reply = app.add_option("--reply", options.reply, "How to reply, normal at first")
                             ->type_name("MODE")
                             ->check(is_mode);
    app.add_option("--delay", options.delay, "How late replies are that are late, 61 at first")
        ->type_name("SECONDS")
        ->check(CheckDelay);
    CLI::Option* pid_file =
        app.add_option("--pid-file", options.pid_file, "File to write the process's number to")
            ->type_name("FILE");
    CLI::Option* background =
        app.add_flag("--background", options.background, "Return as soon as requests can be sent");
    CLI::Option* verbose = app.add_flag("--verbose", options.verbose, "Log every request");
    app.add_option("--tell", options.tell, "Change how the daemon replies that is running")
        ->type_name("MODE")
        ->check(is_mode)
        ->excludes(reply, pid_file, background, verbose);
    app.set_version_flag("--version", "wland " WLAND_VERSION);
}

void Serve(const Options& options) {
    wland::Behaviour behaviour;
    behaviour.mode = wland::FindReplyMode(options.reply).value_or(behaviour.mode);
    behaviour.delay = options.Delay().value_or(behaviour.delay);
    if (options.verbose) {
        wland::LogDetails();
    }
    const wland::StopSignals stop;  // before there is anything to remove
    wland::Server server(behaviour, stop);
    velk::UniqueFd caller;
    if (options.background) {
        caller = wland::Detach();
    }
    const wland::PidFile pid_file(options.pid_file);
    if (options.background) {
        wland::FinishDetaching(std::move(caller));
    }
    server.Run();
}

int Run(int argc, char** argv) {
    Options options;
    CLI::App app(kDescription, "wland");
    AddOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answer) {
        return app.exit(answer);
    } catch (const CLI::ParseError& error) {
        wland::Log(error.what());
        return kUsageError;
    }
    options.has_delay = app.count("--delay") != 0;
    if (options.tell.empty()) {
        Serve(options);
    } else {
        wland::Tell(options.tell, options.Delay());
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        wland::Log(error.what());
        return kFailed;
    }
}
