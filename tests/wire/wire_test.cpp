// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Every request of the tables on a fixed device: the request's and the answer's bytes, the messages
// to the wireless daemon, the shell lines and the files afterwards. tests/wire/records has them as
// text, one file a scene. They are the same on every machine: this build's are left in the build
// folder.
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sstream>

#include <arpa/inet.h>
#include <gmock/gmock.h>

#include "fault/kit/requests.h"
#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "wire/record_text.h"

namespace {

using fault::Scene;
using testkit::Call;

constexpr char kRoutes[] = "/var/tmp/routes";

struct NamedScene {
    const char* name;
    Scene scene;
    bool is_beyond_ascii = false;  // values of kHighBytes in files, requests and the daemon
};

constexpr NamedScene kScenes[] = {
    {"static", {}},
    {"dhcp", {.has_cable = true, .uses_dhcp = true}},
    {"beyond_ascii", {}, true},
};

// Negative where char is signed. As long as a WEP key.
constexpr std::string_view kHighBytes =
    "\xc3\xbc"
    "b\xff\x80";

// Values that are different when read in the other byte order.
SMsgState State() {
    SMsgState state{};
    strcpy(state.product, "P:  Vendor=2c51 ProdID=0a12 Rev= 1.04");
    strcpy(state.software_version, "2.1");
    state.region = 2;
    memcpy(state.access_point, "\x00\x1d\x73\xaa\x0b\xff", sizeof(state.access_point));
    state.dot11_phy = 1;
    memcpy(state.rate, "\x01\x02\x03\x04", sizeof(state.rate));
    state.signal[0] = 0x0102;
    state.signal[1] = 0xFFC4;
    return state;
}

SMsgConf HighConfiguration() {
    SMsgConf conf = fault::WirelessConfiguration();
    conf.ssid_length = conf.psk_length = kHighBytes.size();
    kHighBytes.copy(conf.ssid, kHighBytes.size());
    kHighBytes.copy(conf.psk, kHighBytes.size());
    for (SWepKey& key : conf.wep_key) {
        kHighBytes.copy(key.key, kHighBytes.size());
    }
    conf.channel = 0x80;
    return conf;
}

SMsgState HighState() {
    SMsgState state = State();
    strcpy(state.product, "Rev= \xff\x80");
    strcpy(state.software_version, "\xff\x80");
    state.region = 0xFF;
    memcpy(state.rate, "\x80\x96\xfe\xff", sizeof(state.rate));
    return state;
}

fault::Files HighFiles() {
    const std::string value(kHighBytes);
    return {{testkit::kIdentityFile, "ADMINISTRATOR=" + value + "\nLOCATION=" + value + "\n"},
            {testkit::kResolverFile, "# " + value + "\nnameserver 10.0.0.53\n"}};
}

// Replaces the data of every set.
std::vector<fault::Request> HighRequests() {
    std::vector<fault::Request> requests;
    for (const fault::Group& group : fault::AllRequests()) {
        fault::Request request = group.front();
        if (request.request.command_type == VELK_SET) {
            memset(request.request.data, 0, sizeof(request.request.data));
            kHighBytes.copy(request.request.data, kHighBytes.size());
        }
        requests.push_back(request);
    }
    return requests;
}

std::vector<fault::Request> UsualRequests() {
    std::vector<fault::Request> requests;
    for (const fault::Group& group : fault::AllRequests()) {
        requests.insert(requests.end(), group.begin(), group.end());
    }
    return requests;
}

// The kernel prints an address as the number that its bytes make on the machine.
std::string Routes() {
    char gateway[16];
    (void)snprintf(gateway, sizeof(gateway), "%08X", inet_addr("10.0.0.1"));
    return "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
           "eth0\t00000000\t" +
           std::string(gateway) + "\t0003\t0\t0\t0\t00000000\n";
}

// The data of an answer that are numbers of the machine; all others are bytes and texts.
wire::Numbers NumbersIn(const _velk_request& request) {
    return request.command_id == VELK_CMD_SIGNAL ? wire::Numbers{{0, 2}, {2, 2}} : wire::Numbers{};
}

std::string Escaped(const std::string& line) {
    std::string text;
    for (const char byte : line) {
        char code[8];
        (void)snprintf(code, sizeof(code), "\\x%02x", static_cast<unsigned char>(byte));
        text += static_cast<unsigned char>(byte) < 0x80 ? std::string(1, byte) : code;
    }
    return text;
}

std::string FileText(const std::string& path, const std::optional<std::string>& text) {
    if (!text) {
        return "gone " + path + "\n";
    }
    std::string lines = "file " + path + "\n";
    std::istringstream rest(*text);
    for (std::string line; std::getline(rest, line);) {
        lines += "  |" + Escaped(line) + "\n";
    }
    return lines;
}

class WireTest : public testkit::DeviceTest, public testing::WithParamInterface<NamedScene> {
  protected:
    // The wired port is a real one of the private network, with the address that the records have.
    static void SetUpTestSuite() {
        ASSERT_EQ(system("ip link add eth0 address 00:80:92:1a:2b:3c type veth peer name r0"), 0);
    }
    static void TearDownTestSuite() { (void)!system("ip link del eth0"); }

    std::string Records(const NamedScene& scene) {
        std::string records;
        for (const fault::Request& request :
             scene.is_beyond_ascii ? HighRequests() : UsualRequests()) {
            records += "== " + request.name + "\n" + Record(scene, request.request);
        }
        return records;
    }

  private:
    std::string Record(const NamedScene& scene, const _velk_request& request) {
        fault::Device device(scene.scene, scene.is_beyond_ascii ? HighFiles() : fault::Files{});
        libc().ScriptAlways(Call::kIoctl, testkit::Pass());
        device.daemon().SetState(scene.is_beyond_ascii ? HighState() : State());
        if (scene.is_beyond_ascii) {
            device.daemon().SetConf(HighConfiguration());
        }
        testkit::WriteFile(kRoutes, Routes());
        libc().Redirect(testkit::kRoutingTable, kRoutes);
        const fault::Files before = fault::ReadTargets();
        std::ostringstream record;
        record << "request " << wire::RecordText(request) << "\n";
        record << "result " << Execute(request) << "\n";
        record << "answer " << wire::RecordText(response, NumbersIn(request)) << "\n";
        for (const std::string& line : libc().Commands()) {
            record << "shell " << Escaped(line) << "\n";
        }
        device.daemon().ServePending();
        for (const std::string& message : device.daemon().requests()) {
            record << "message " << wire::MessageText(message) << "\n";
        }
        for (const auto& [path, text] : fault::ReadTargets()) {
            if (text != before.at(path)) {
                record << FileText(path, text);
            }
        }
        return record.str();
    }
};

TEST_P(WireTest, TheBytesAreThoseOfEveryMachine) {
    const std::string name = std::string(GetParam().name) + ".txt";
    const std::string expected = testkit::ReadFile(VELK_SOURCE_DIR "/tests/wire/records/" + name);
    const std::string actual = Records(GetParam());
    const std::string folder = VELK_BINARY_DIR "/wire-records";
    std::filesystem::create_directories(folder);
    testkit::WriteFile(folder + "/" + name, actual);
    EXPECT_TRUE(actual == expected)
        << "see: diff tests/wire/records/" << name << " " << folder << "/" << name;
}

INSTANTIATE_TEST_SUITE_P(Scenes, WireTest, testing::ValuesIn(kScenes),
                         [](const auto& scene) { return std::string(scene.param.name); });

}  // namespace
