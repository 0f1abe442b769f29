// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_shell.cpp - replaces the shell.
#include "support/fake_shell.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

#include <unistd.h>

#include "support/device_test.h"

namespace testkit {
namespace {

constexpr char kLinesFile[] = "/run/fake-shell-lines";  // on the private device

}  // namespace

FakeShell::FakeShell() {
    {
        const Unrecorded unrecorded;
        (void)unlink(kLinesFile);
    }
    LibcRecorder::Get().ScriptAlways(Call::kSystem, Return(0));
    LibcRecorder::Get().OnCall(Call::kSystem, [this](const Event& event) { Run(event.text); });
}

FakeShell::~FakeShell() {
    LibcRecorder::Get().ScriptAlways(Call::kSystem, Pass());
    LibcRecorder::Get().OnCall(Call::kSystem, nullptr);
}

void FakeShell::Prints(const std::string& tool, const std::vector<std::string>& outputs) {
    tools_[tool] = {outputs};
}

void FakeShell::LeavesNoFile(const std::string& tool) {
    tools_[tool].leaves_file = false;
}

void FakeShell::RunsForReal(const std::string& tool, const std::string& search_path) {
    search_paths_[tool] = search_path;
}

std::vector<std::string> FakeShell::Lines() const {
    std::vector<std::string> lines;
    std::ifstream file(kLinesFile);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

void FakeShell::Run(const std::string& line) {
    const Unrecorded unrecorded;
    std::ofstream(kLinesFile, std::ios::app) << line << "\n";
    for (const auto& [tool, search_path] : search_paths_) {
        if (line.starts_with(tool)) {
            (void)!system(("PATH=" + search_path + "; export PATH; " + line).c_str());
            return;
        }
    }
    if (line.starts_with("rm ")) {
        unlink(line.substr(line.rfind(' ') + 1).c_str());
        return;
    }
    const size_t arrow = line.find(" > ");
    if (arrow == std::string::npos) {
        return;
    }
    const std::string file = line.substr(arrow + 3);
    if (!file.starts_with("/dev/null")) {
        Redirect(line.substr(0, arrow), file);
    }
}

void FakeShell::Redirect(const std::string& command, const std::string& file) {
    if (command.starts_with("cat ")) {
        const std::string source = command.substr(4);
        WriteFile(file, Exists(source) ? ReadFile(source) : "");
        return;
    }
    const auto found = std::find_if(tools_.begin(), tools_.end(), [&](const auto& entry) {
        return command.starts_with(entry.first);
    });
    if (found == tools_.end()) {
        WriteFile(file, "");
        return;
    }
    Tool& tool = found->second;
    if (!tool.leaves_file) {
        unlink(file.c_str());
        return;
    }
    WriteFile(file, tool.outputs[std::min(tool.runs, tool.outputs.size() - 1)]);
    ++tool.runs;
}

}  // namespace testkit
