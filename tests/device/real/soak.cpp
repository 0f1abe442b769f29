// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// soak.cpp - sends random requests to a device from several processes at the same time.
//
//   soak SECONDS SEED
//
// One process uses only the wireless daemon, which takes one query at a time. The others share the
// rest. Values are valid, or are refused by the library; values that the library does not check are
// in a form that the reader of the file accepts. Prints the number of requests with each result.
// Fails if a response does not match its request, or if memory or descriptors of a process grow
// after the first third of the time.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include "velk.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kProcesses = 5;
constexpr int kFirstResult = LIB_VELK_WIRED_LINKED;  // the lowest
constexpr size_t kResults = 1 - kFirstResult;
constexpr size_t kLongestName = VELK_INTERFACE_SIZE - 1;
constexpr long kMemorySlack = 2048;  // KiB; the allocator's pages come and go
constexpr char kHostile[] = "aZ09 .,'\"\\$`&|;<>/*?#!%()[]{}~^=+-_:@";

using Counts = std::array<long, kResults>;

struct Resources {
    long memory = 0;  // KiB
    long descriptors = 0;
};

Resources Measure() {
    Resources used;
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            used.memory = std::stol(line.substr(6));
        }
    }
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        ++used.descriptors;
    }
    return used;
}

class Sender {
  public:
    Sender(unsigned seed, bool wireless) : random_(seed), wireless_(wireless) {}

    _velk_request Next();

  private:
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }
    template <size_t n>
    int OneOf(const int (&values)[n]) {
        return values[Below(n)];
    }
    char Byte() { return static_cast<char>(Below(256)); }
    std::string Quad();
    std::string HostileText(int longest);
    void Put(_velk_request& request, size_t at, const std::string& text);
    void FillSchedule(_velk_request& request);
    void Fill(_velk_request& request);
    void MakeNonsense(_velk_request& request);
    _velk_request NextWireless();

    std::mt19937 random_;
    bool wireless_;
};

std::string Sender::Quad() {
    return "10." + std::to_string(Below(256)) + "." + std::to_string(Below(256)) + "." +
           std::to_string(Below(254) + 1);
}

std::string Sender::HostileText(int longest) {
    std::string text(static_cast<size_t>(Below(longest)), ' ');
    for (char& character : text) {
        character = kHostile[Below(sizeof(kHostile) - 1)];
    }
    return text;
}

void Sender::Put(_velk_request& request, size_t at, const std::string& text) {
    memcpy(request.data + at, text.c_str(), text.size() + 1);
}

// The library checks days and the form of the time, but not hours and weekdays.
void Sender::FillSchedule(_velk_request& request) {
    const int type = OneOf({1, 2, 3, 4, 99, 0, 5});
    const int value = type == 4 ? Below(40) : Below(7) + 1;
    char time[sizeof("00:00")];
    (void)snprintf(time, sizeof(time), "%02d:%02d", Below(24), Below(60));
    request.data[0] = static_cast<char>(type);
    request.data[1] = static_cast<char>(value);
    Put(request, 2, Below(8) == 0 ? "8h30" : time);
}

void Sender::Fill(_velk_request& request) {
    switch (request.command_id) {
        case VELK_CMD_ADMINISTRATOR:
        case VELK_CMD_LOCATION:
            Put(request, 0, HostileText(VELK_DATA_SIZE));
            break;
        case VELK_CMD_NTP_SERVER:
            Put(request, 0,
                Below(2) == 0 ? Quad() : "time" + std::to_string(Below(100)) + ".example");
            break;
        case VELK_CMD_WEB_UPDATE:
            FillSchedule(request);
            break;
        case VELK_CMD_NETMASK:
            Put(request, 0, Below(2) == 0 ? "255.255.255.0" : "255.0.0.0");
            break;
        case VELK_CMD_IP_ADDRESS:
        case VELK_CMD_GATEWAY:
            Put(request, 0, Quad());
            break;
        case VELK_CMD_DNS:
            for (size_t server = 0; server < static_cast<size_t>(Below(4)); ++server) {
                Put(request, server * 16, Quad());
            }
            break;
        default:  // a switch or a mode, often a value that is not valid
            request.data[0] = Below(4) == 0 ? Byte() : static_cast<char>(Below(6));
    }
}

void Sender::MakeNonsense(_velk_request& request) {
    switch (Below(4)) {
        case 0:
            request.command_type = static_cast<uint32_t>(OneOf({0, 4, 77, -1}));
            break;
        case 1:
            request.command_id =
                static_cast<uint32_t>(OneOf({0, 8, 12, 100, 110, 202, 313, 319, -1}));
            break;
        case 2:
            memset(request.interface, 'e', sizeof(request.interface));
            break;
        default:
            (void)snprintf(request.interface, sizeof(request.interface), "lo");
    }
}

_velk_request Sender::NextWireless() {
    _velk_request request{};
    (void)snprintf(request.interface, sizeof(request.interface), "eth1");
    request.command_type = static_cast<uint32_t>(Below(2) + VELK_GET);
    request.command_id = static_cast<uint32_t>(Below(20) + VELK_CMD_STANDARD);
    for (char& byte : request.data) {
        byte = Byte();
    }
    if (Below(3) == 0) {
        request.command_type = VELK_GET;
        request.command_id = static_cast<uint32_t>(
            OneOf({VELK_CMD_HARDWARE_VERSION, VELK_CMD_SOFTWARE_VERSION, VELK_CMD_MAC_ADDRESS}));
    }
    if (Below(200) == 0) {
        request.command_type = VELK_RESTART;
        request.command_id = VELK_CMD_RESTART;
        request.data[0] = static_cast<char>(Below(2) * 2);
    }
    return request;
}

_velk_request Sender::Next() {
    if (wireless_) {
        return NextWireless();
    }
    static constexpr int kDeviceIds[] = {2, 3, 6, 7, 9, 10, 11};
    static constexpr int kPortIds[] = {101, 102, 103, 104, 105, 106, 107, 108, 109, 201};
    _velk_request request{};
    const bool of_device = Below(3) == 0;
    const int id = of_device ? OneOf(kDeviceIds) : OneOf(kPortIds);
    const bool wired = id == VELK_CMD_MAC_ADDRESS || Below(2) == 0;
    request.command_id = static_cast<uint32_t>(id);
    request.command_type = static_cast<uint32_t>(Below(2) + VELK_GET);
    if (!of_device) {
        (void)snprintf(request.interface, sizeof(request.interface), wired ? "eth0" : "eth1");
    }
    Fill(request);
    if (Below(4) == 0) {
        MakeNonsense(request);
    }
    return request;
}

bool IsValidResponse(const _velk_request& request, const _velk_request& response, int result) {
    const bool known = result == 0 || result == -1 || (result <= -3 && result >= kFirstResult);
    return known && response.command_id == request.command_id &&
           response.command_type == request.command_type &&
           strncmp(response.interface, request.interface, kLongestName) == 0;
}

bool IsConstant(const Resources& before, const Resources& after) {
    return after.descriptors == before.descriptors && after.memory <= before.memory + kMemorySlack;
}

// Sends requests for `time` and counts the results. Returns false on failure.
bool Send(Sender& sender, std::chrono::seconds time, Counts& counts) {
    const Clock::time_point start = Clock::now();
    Resources early;
    while (Clock::now() < start + time) {
        const _velk_request request = sender.Next();
        _velk_request response;
        memset(&response, 0x55, sizeof(response));
        const int result = execute_velk_command(&request, &response);
        if (!IsValidResponse(request, response, result)) {
            (void)fprintf(stderr, "soak: type %u, id %u: result %d\n", request.command_type,
                          request.command_id, result);
            return false;
        }
        ++counts[static_cast<size_t>(result - kFirstResult)];
        if (early.descriptors == 0 && Clock::now() > start + time / 3) {
            early = Measure();
        }
    }
    const Resources late = Measure();
    (void)fprintf(stderr, "soak: memory %ld to %ld KiB, descriptors %ld to %ld\n", early.memory,
                  late.memory, early.descriptors, late.descriptors);
    return early.descriptors > 0 && IsConstant(early, late);
}

[[noreturn]] void RunWorker(int number, int seconds, int seed, int report) {
    Sender sender(static_cast<unsigned>(seed + number), number == 0);
    Counts counts{};
    const bool succeeded = Send(sender, std::chrono::seconds(seconds), counts);
    (void)!write(report, counts.data(), sizeof(counts));
    _exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace

int main(int argc, char** argv) {
    int ends[2];
    if (argc != 3 || pipe(ends) == -1) {
        (void)fputs("usage: soak SECONDS SEED\n", stderr);
        return 2;
    }
    for (int number = 0; number < kProcesses; ++number) {
        if (fork() == 0) {
            RunWorker(number, atoi(argv[1]), atoi(argv[2]), ends[1]);
        }
    }
    (void)close(ends[1]);
    Counts sum{};
    Counts part;
    int reports = 0;
    for (; read(ends[0], part.data(), sizeof(part)) == sizeof(part); ++reports) {
        for (size_t i = 0; i < kResults; ++i) {
            sum[i] += part[i];
        }
    }
    bool succeeded = reports == kProcesses;
    for (int status; wait(&status) > 0;) {
        succeeded = succeeded && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    }
    for (size_t i = 0; i < kResults; ++i) {
        (void)printf("%d: %ld\n", static_cast<int>(i) + kFirstResult, sum[i]);
    }
    return succeeded ? EXIT_SUCCESS : EXIT_FAILURE;
}
