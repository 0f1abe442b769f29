// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Concurrent calls from many threads of one program, with the real shell.
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fnmatch.h>
#include <gmock/gmock.h>

#include "support/paths.h"
#include "velk.h"

namespace {

namespace fs = std::filesystem;

using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kResultFile;

constexpr int kThreads = 8;
constexpr char kTools[] = "/tmp/tools";
constexpr char kCopied[] = "/tmp/copied";  // all texts that cat(1) copied, in order

void Write(const std::string& path, std::string_view text) {
    std::ofstream(path) << text;
}

std::string Read(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string InterfacesWith(const std::string& address, const std::string& gateway) {
    return "auto eth0\niface eth0 inet static\n\taddress " + address +
           "\n\tnetmask 255.255.255.0\n\tgateway " + gateway + "\n";
}

int Execute(uint32_t type, uint32_t id, std::string_view interface, std::string_view data,
            _velk_request& response) {
    _velk_request request{};
    request.command_type = type;
    request.command_id = id;
    interface.copy(request.interface, sizeof(request.interface));
    data.copy(request.data, sizeof(request.data));
    return execute_velk_command(&request, &response);
}

void InThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back(work, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// The tests run on a simulated device. Only these tools are in the search path.
class ThreadsTest : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directory(kTools);
        AddTool("cat", "/bin/cat \"$1\" >>" + std::string(kCopied) + "; exec /bin/cat \"$1\"");
        AddTool("rm", "exec /bin/rm \"$@\"");
        AddTool("sudo", "exec \"$@\"");
        AddTool("ethtool", "echo Speed: 100Mb/s; echo Duplex: Full; echo Auto-negotiation: off");
        setenv("PATH", kTools, 1);
        Write(kInterfacesFile, InterfacesWith("192.168.0.10", "192.168.0.1"));
        Write(kIdentityFile, "ADMINISTRATOR=Robin\nLOCATION=Cellar\n");
    }

  private:
    static void AddTool(const std::string& name, const std::string& line) {
        const std::string path = std::string(kTools) + "/" + name;
        Write(path, "#!/bin/sh\n" + line + "\n");
        fs::permissions(path, fs::perms::owner_all);
    }
};

TEST_F(ThreadsTest, EachThreadGetsItsOwnAnswer) {
    struct Expected {
        uint32_t id;
        const char* interface;
        const char* text;
    };
    static constexpr Expected kExpected[] = {
        {VELK_CMD_IP_ADDRESS, "eth0", "192.168.0.10"},
        {VELK_CMD_NETMASK, "eth0", "255.255.255.0"},
        {VELK_CMD_ADMINISTRATOR, "", "Robin"},
        {VELK_CMD_LOCATION, "", "Cellar"},
    };
    std::atomic<int> wrong = 0;
    InThreads([&](int number) {
        const Expected& expected = kExpected[static_cast<size_t>(number) % std::size(kExpected)];
        for (int round = 0; round < 200; ++round) {
            _velk_request response;
            const int result = Execute(VELK_GET, expected.id, expected.interface, "", response);
            wrong += result == 0 && std::string_view(response.data) == expected.text ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(ThreadsTest, ThreadsWaitForEachOthersTools) {
    std::atomic<int> wrong = 0;
    InThreads([&](int) {
        _velk_request response;
        const int result = Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0", "", response);
        wrong += result == 0 && response.data[0] == VELK_LINK_100_FULL ? 0 : 1;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_FALSE(fs::exists(kResultFile));
}

// A get during a set may read an empty file while the shell copies it.
bool MayBeRead(int result, std::string_view text) {
    if (result != 0) {
        return result == -1;
    }
    return text.empty() || text == "192.168.0.10" ||
           (text.find_first_not_of("0123456789.") == std::string_view::npos &&
            fnmatch("10.0.[0-7].[0-9]*", std::string(text).c_str(), 0) == 0);
}

// Returns the stored values in order, from the copies of the edits. Each copy must differ from the
// one before in one of the two settings. An edit of an outdated text would restore an old value.
std::vector<std::string> StoredInOrder(const std::string& copied) {
    std::vector<std::string> stored;
    std::string address = "192.168.0.10";
    std::string gateway = "192.168.0.1";
    std::string new_address;
    std::string new_gateway;
    std::string whole;
    std::istringstream words(copied);
    for (std::string word; words >> word;) {
        if (word == "address") {
            words >> new_address;
        }
        if (word != "gateway") {
            continue;
        }
        words >> new_gateway;  // the last word of a copy
        whole += InterfacesWith(new_address, new_gateway);
        EXPECT_NE(new_address != address, new_gateway != gateway) << new_address << new_gateway;
        stored.push_back(new_address != address ? new_address : new_gateway);
        address = new_address;
        gateway = new_gateway;
    }
    EXPECT_EQ(copied, whole) << "one is torn";
    EXPECT_EQ(Read(kInterfacesFile), InterfacesWith(address, gateway));
    return stored;
}

TEST_F(ThreadsTest, ThreadsEditOneFileInTurn) {
    fs::remove(kCopied);
    std::atomic<int> wrong = 0;
    std::vector<std::string> reported[kThreads];  // as stored
    InThreads([&](int number) {
        const uint32_t id = number % 2 == 0 ? VELK_CMD_IP_ADDRESS : VELK_CMD_GATEWAY;
        for (int round = 0; round < 20; ++round) {
            const std::string address =
                "10.0." + std::to_string(number) + "." + std::to_string(round);
            _velk_request response;
            const int set = Execute(VELK_SET, id, "eth0", address, response);
            wrong += set == 0 || set == LIB_VELK_LOCKED ? 0 : 1;
            if (set == 0) {
                reported[number].push_back(address);
            }
            const int get = Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0", "", response);
            wrong += MayBeRead(get, response.data) ? 0 : 1;
        }
    });
    EXPECT_EQ(wrong, 0);
    std::vector<std::string> all_reported;
    for (const std::vector<std::string>& one : reported) {
        all_reported.insert(all_reported.end(), one.begin(), one.end());
    }
    EXPECT_THAT(StoredInOrder(Read(kCopied)), testing::UnorderedElementsAreArray(all_reported));
    EXPECT_GT(all_reported.size(), 0U);
    EXPECT_FALSE(fs::exists("/var/tmp/interfaces"));
}

}  // namespace
