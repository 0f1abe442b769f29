// scans_fuzz.cpp - every file read and every tool's output scanned, whatever it says.
//
// An input is the row's letter, "0" or "1" for the interface and the rest of a line that is not
// looked at, then the row's texts with "----" between them.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "fuzz/kit/fuzz_device.h"

namespace fuzz {
namespace {

constexpr char kRoutes[] = "/tmp/routes";  // in the place of /proc/net/route

enum class Answer {
    kText,     // a part of a line of the last text
    kGateway,  // an address, or nothing
    kByte,     // 1 to `highest`
    kSchedule,
    kServers
};

// A source of what a get reads: a file, or what a tool prints when `path` names none.
struct Row {
    uint32_t id;
    bool has_interface;
    std::vector<std::string> sources;
    Answer answer;
    char highest = 0;
};

const std::vector<Row> kRows = {
    {VELK_CMD_ADMINISTRATOR, false, {"/var/libvelk/libvelk"}, Answer::kText},
    {VELK_CMD_LOCATION, false, {"/var/libvelk/libvelk"}, Answer::kText},
    {VELK_CMD_NTP, false, {"/var/cron/tabs/root"}, Answer::kByte, 2},
    {VELK_CMD_DHCP_NTP, false, {"/etc/dhclient.conf"}, Answer::kByte, 2},
    {VELK_CMD_NTP_SERVER, false, {"/var/cron/tabs/root"}, Answer::kText},
    {VELK_CMD_NTP_RESULT, false, {"/var/libvelk/ntp.log"}, Answer::kByte, 3},
    {VELK_CMD_WEB_UPDATE, false, {"/var/cron/tabs/root"}, Answer::kSchedule},
    {VELK_CMD_IP_METHOD, true, {"/etc/network/interfaces"}, Answer::kByte, 2},
    {VELK_CMD_APIPA, true, {"/etc/dhclient-exit-hooks"}, Answer::kByte, 2},
    {VELK_CMD_IP_ADDRESS, true, {"/etc/network/interfaces"}, Answer::kText},
    {VELK_CMD_DHCP_DNS, true, {"/etc/dhclient.conf"}, Answer::kByte, 2},
    {VELK_CMD_DNS, true, {"/etc/resolv.dnsmasq.conf"}, Answer::kServers},
    {VELK_CMD_LINK_SPEED, true, {"sudo ethtool"}, Answer::kByte, 5},
    {VELK_CMD_GATEWAY, true, {kRoutes}, Answer::kGateway},
    {VELK_CMD_NETMASK, true, {"/etc/network/interfaces", "ifconfig"}, Answer::kText},
};

void Place(Turn& turn, const std::string& source, const std::string& text) {
    if (source.starts_with('/')) {
        testkit::WriteFile(source, text);
    } else {
        turn.shell().Prints(source, {text});
    }
}

std::string TextIn(const std::string& data) {
    return data.substr(0, data.find('\0'));
}

bool IsZero(std::string_view bytes) {
    return bytes.find_first_not_of('\0') == std::string_view::npos;
}

void CheckAnswer(const Row& row, const std::string& data, const std::string& source) {
    const std::string text = TextIn(data);
    switch (row.answer) {
        case Answer::kText:
            Check(source.find(text) != std::string::npos, "the text is what the source says");
            Check(text.find('\n') == std::string::npos, "the text is from one line");
            break;
        case Answer::kGateway: {
            in_addr address{};
            Check(text.empty() || inet_pton(AF_INET, text.c_str(), &address) == 1,
                  "the gateway is an address");
            break;
        }
        case Answer::kByte:
            Check(data[0] >= 1 && data[0] <= row.highest, "the byte is a documented one");
            Check(IsZero(std::string_view(data).substr(1)), "one byte alone is written");
            break;
        case Answer::kSchedule: {
            const char type = data[0];
            Check((type >= 1 && type <= 4) || type == VELK_SCHEDULE_NONE, "a schedule's type");
            Check(data.find(':', 2) != std::string::npos, "a schedule's time");
            break;
        }
        case Answer::kServers:
            Check(IsZero(std::string_view(data).substr(48)), "three slots alone are written");
            break;
    }
}

// The live values are those of an interface that gets its address by DHCP.
constexpr char kDhcpInterfaces[] = "iface eth0 inet dhcp\niface eth1 inet dhcp\n";

void RunGet(const Row& row, const std::string& interface, const std::vector<std::string>& texts) {
    Turn turn;
    testkit::LibcRecorder::Get().Redirect("/proc/net/route", kRoutes);
    testkit::WriteFile("/etc/network/interfaces", kDhcpInterfaces);
    turn.shell().Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
    std::string all;
    for (size_t i = 0; i < row.sources.size(); ++i) {
        const std::string text = i < texts.size() ? texts[i] : "";
        Place(turn, row.sources[i], text);
        all += text + "\n";
    }
    const std::string name = row.has_interface ? interface : "";
    const int result = turn.Execute(VELK_GET, row.id, name);
    const std::string data = testkit::Data(turn.response);
    if (result == LIB_VELK_SUCCESS) {
        CheckAnswer(row, data, all);
    } else {
        Check(IsZero(data), "a get that fails writes nothing");
    }
    Check(turn.Execute(VELK_GET, row.id, name) == result, "a get has one answer");
    Check(testkit::Data(turn.response) == data, "a get has one text");
}

bool Holds(std::string_view line, std::string_view text) {
    return line.find(text) != std::string_view::npos;
}

// As the kernel writes a device's ids.
std::string DeviceLine(unsigned long vendor, unsigned long product) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << "Vendor=" << std::setw(4) << vendor
         << " ProdID=" << std::setw(4) << product;
    return text.str();
}

unsigned long HexBehindKey(const std::string& line) {
    return std::min(strtoul(line.substr(4).c_str(), nullptr, 16), 0xFFFFFFFFUL);
}

// True when the device list names the built-in adapter or one of the support list.
bool IsListed(const std::string& support_list, const std::string& devices) {
    bool is_listed = Holds(devices, "QT4408RKM");
    unsigned long vendor = 0;
    for (const std::string& line : Lines(support_list)) {
        if (Holds(line, "VID=")) {
            vendor = HexBehindKey(line);
        }
        if (Holds(line, "PID=")) {
            is_listed = is_listed || Holds(devices, DeviceLine(vendor, HexBehindKey(line)));
        }
    }
    return is_listed;
}

void RunAdapter(const std::vector<std::string>& texts) {
    const Turn turn;
    const std::string devices = texts.size() > 1 ? texts[1] : "";
    testkit::WriteFile("/usr/local/share/apps/wlan/supportlist.ini", texts[0]);
    testkit::WriteFile("/proc/bus/usb/devices", devices);
    Check(IsWlanAttached() == (IsListed(texts[0], devices) ? 1 : 0), "a listed device is attached");
    testkit::WriteFile("/proc/bus/usb/devices", "");
    Check(IsWlanAttached() == 0, "no device, no adapter");
}

// The links that a text tells of, line by line: 1 or 0.
std::vector<int> LinksIn(const std::string& text, std::string_view up, std::string_view down) {
    std::vector<int> links;
    for (const std::string& line : Lines(text)) {
        if (Holds(line, up)) {
            links.push_back(1);
        } else if (Holds(line, down)) {
            links.push_back(0);
        }
    }
    return links;
}

// The tool's first word counts, without one the last of the first log file that has one.
int LinkIn(const std::string& tool, const std::vector<std::string>& logs) {
    const std::vector<int> shown = LinksIn(tool, "Link detected: yes", "Link detected: no");
    if (!shown.empty()) {
        return shown.front();
    }
    for (const std::string& log : logs) {
        const std::vector<int> logged = LinksIn(log, "link up", "link down");
        if (!logged.empty()) {
            return logged.back();
        }
    }
    return 0;
}

// What ethtool shows, and the two log files that count without.
void RunLink(const std::vector<std::string>& texts) {
    Turn turn;
    const std::vector<std::string> logs = {texts.size() > 1 ? texts[1] : "",
                                           texts.size() > 2 ? texts[2] : ""};
    turn.shell().Prints("sudo /usr/sbin/ethtool", {texts[0]});
    turn.shell().Prints("grep", logs);
    Check(IsWiredLinked() == LinkIn(texts[0], logs), "the link is as tool or log tells");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string head = fuzz::TakeLine(input);
    if (head.size() < 2) {
        return 0;
    }
    const std::vector<std::string> texts = fuzz::Sections(input);
    if (head[0] == 'y') {
        fuzz::RunLink(texts);
    } else if (head[0] == 'z') {
        fuzz::RunAdapter(texts);
    } else {
        const size_t letter = static_cast<unsigned char>(head[0]);
        const fuzz::Row& row = fuzz::kRows[(letter - 'a') % fuzz::kRows.size()];
        fuzz::RunGet(row, head[1] == '1' ? "eth1" : "eth0", texts);
    }
    return 0;
}
