// dhcp_client.cpp - whether a DHCP client runs for an interface.
#include "velkctl/call/dhcp_client.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

namespace velkctl {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kClient = "dhclient";

std::vector<std::string_view> WordsIn(std::string_view command_line) {
    std::vector<std::string_view> words;
    while (!command_line.empty()) {
        const size_t end = std::min(command_line.find('\0'), command_line.size());
        words.push_back(command_line.substr(0, end));
        command_line.remove_prefix(std::min(end + 1, command_line.size()));
    }
    return words;
}

std::string CommandLineOf(const fs::path& process) {
    std::ifstream file(process / "cmdline", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

bool IsDhcpClientFor(std::string_view command_line, std::string_view interface) {
    const std::vector<std::string_view> words = WordsIn(command_line);
    if (words.empty()) {
        return false;
    }
    const std::string_view program = words.front();
    return program.substr(program.rfind('/') + 1) == kClient &&
           std::ranges::find(words, interface) != words.end();
}

bool IsDhcpClientRunning(const std::string& interface) {
    std::error_code error;
    const fs::directory_iterator processes("/proc", error);
    return std::any_of(begin(processes), end(processes), [&](const fs::directory_entry& process) {
        return IsDhcpClientFor(CommandLineOf(process.path()), interface);
    });
}

}  // namespace velkctl
