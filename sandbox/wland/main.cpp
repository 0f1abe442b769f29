// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - wland: a simulated wireless daemon.
#include <chrono>
#include <cmath>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "lib/base/unique_fd.h"
#include "sandbox/wland/background.h"
#include "sandbox/wland/control.h"
#include "sandbox/wland/log.h"
#include "sandbox/wland/records.h"
#include "sandbox/wland/reply_modes.h"
#include "sandbox/wland/server.h"
#include "sandbox/wland/stop_signals.h"
#include <CLI/CLI.hpp>

namespace {

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

constexpr char kDescription[] =
    "Simulates the device's wireless daemon: stores a configuration, and replies to\n"
    "queries for the configuration and the adapter's state. It can also send faulty\n"
    "replies.";
constexpr char kFooter[] =
    "Reply modes:\n"
    "  normal   a correct reply\n"
    "  silent   no reply\n"
    "  short    the first 40 bytes of a correct reply\n"
    "  empty    a datagram of 0 bytes\n"
    "  late     a correct reply after the delay\n"
    "  garbage  240 bytes 0xa5\n"
    "Ends with SIGTERM or SIGINT.\n"
    "Exit status: 0 after such a signal, 1 if it cannot run, 2 for wrong usage.";

struct Options {
    std::string reply = "normal";
    std::string tell;
    double delay = 0;
    bool has_delay = false;
    std::string pid_file;
    std::string record;
    bool background = false;
    bool verbose = false;

    std::optional<std::chrono::milliseconds> Delay() const {
        if (!has_delay) {
            return std::nullopt;
        }
        return std::chrono::milliseconds(std::llround(delay * 1000));
    }
};

// Used in place of CLI::Range, which accepts "nan".
std::string CheckDelay(const std::string& text) {
    constexpr double kLongest = 3600;
    double seconds = 0;
    const bool is_number = CLI::detail::lexical_cast(text, seconds);
    return is_number && seconds >= 0 && seconds <= kLongest
               ? ""
               : text + " is not a number of seconds from 0 to 3600";
}

void AddOptions(CLI::App& app, Options& options) {
    CLI::IsMember is_mode(wland::ReplyModeNames());
    is_mode.description("");  // the footer lists the modes
    app.footer(kFooter);
    CLI::Option* reply = app.add_option("--reply", options.reply, "Reply mode; normal if not given")
                             ->type_name("MODE")
                             ->check(is_mode);
    app.add_option("--delay", options.delay, "Delay of late replies; 61 if not given")
        ->type_name("SECONDS")
        ->check(CheckDelay);
    CLI::Option* pid_file =
        app.add_option("--pid-file", options.pid_file, "File to write the process ID to")
            ->type_name("FILE");
    CLI::Option* record =
        app.add_option("--record", options.record, "File with the answers of a captured daemon")
            ->type_name("FILE");
    CLI::Option* background = app.add_flag("--background", options.background,
                                           "Run in the background; return when ready");
    CLI::Option* verbose = app.add_flag("--verbose", options.verbose, "Log every request");
    app.add_option("--tell", options.tell, "Change the reply mode of the running daemon")
        ->type_name("MODE")
        ->check(is_mode)
        ->excludes(reply, pid_file, record, background, verbose);
    app.set_version_flag("--version", "wland " WLAND_VERSION);
}

void Serve(const Options& options) {
    wland::Behaviour behaviour;
    behaviour.mode = wland::FindReplyMode(options.reply).value_or(behaviour.mode);
    behaviour.delay = options.Delay().value_or(behaviour.delay);
    if (options.verbose) {
        wland::LogDetails();
    }
    const wland::StopSignals stop;  // before sockets and files are made
    const wland::Records records =
        options.record.empty() ? wland::Records() : wland::ReadRecords(options.record);
    wland::Server server(behaviour, records, stop);
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
        wland::SetReplyMode(options.tell, options.Delay());
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
