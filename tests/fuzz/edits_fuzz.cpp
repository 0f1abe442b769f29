// edits_fuzz.cpp - every set that edits a file, on any file: nothing but its own lines changes; on
// files as the device has them, the set is read back, and a second one changes nothing.
//
// An input is the row's letter, "0" or "1" for the interface, the value up to the end of the line,
// then the files' texts with "----" between them. Digits stand for the bytes of values that are no
// text: "4" is the byte 4, "O" is 31.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/edit_files.h"
#include "fuzz/kit/fuzz_device.h"

namespace fuzz {
namespace {

enum class Value { kText, kByte, kServers, kSchedule };

// A set, the files it edits, and what the lines hold that are its own.
struct Row {
    uint32_t id;
    bool has_interface;
    Value value;
    std::vector<EditedFile> files;
    bool can_get;
};

const EditedFile kMethodFile = {kInterfaces, {"iface eth"}, Change::kWhole};
const EditedFile kAddressFile = {kInterfaces, {"address "}, Change::kMoves};
const EditedFile kNetmaskFile = {kInterfaces, {"netmask "}, Change::kMoves};
const EditedFile kGatewayFile = {kInterfaces, {"gateway "}, Change::kMoves};
const EditedFile kBlocksFile = {kDhcpConfig, {""}, Change::kSwitch};
const EditedFile kNtpOptionFile = {kDhcpConfig, {"ntp-servers", ";"}, Change::kWhole};
const EditedFile kDnsOptionFile = {kDhcpConfig, {"domain-name-servers", ";"}, Change::kWhole};
const EditedFile kScriptFile = {kClientScript, {"make_resolv_conf"}, Change::kSwitch};
const EditedFile kApipaFile = {kExitHooks, {"/usr/sbin/avahi-autoipd"}, Change::kSwitch};
const EditedFile kHookedNtpFile = {kExitHooks, {"/usr/bin/ntpdate"}, Change::kSwitch};
const EditedFile kNoticeFile = {
    kExitHooks, {"/sbin/printdhcpnotice.pl", "/sbin/printdhcpstart.pl"}, Change::kSwitch};
const EditedFile kNtpFile = {kCrontab, {"ntpdate"}, Change::kSwitch};
const EditedFile kNtpServerFile = {kCrontab, {"ntpdate"}, Change::kServer};
const EditedFile kUpdaterFile = {kCrontab, {"web_contents_updater"}, Change::kMoves};
const EditedFile kAdministratorFile = {kSettings, {"ADMINISTRATOR="}, Change::kMoves};
const EditedFile kLocationFile = {kSettings, {"LOCATION="}, Change::kMoves};
const EditedFile kResolverFile = {kResolver, {""}, Change::kMoves};

const std::vector<Row> kRows = {
    {VELK_CMD_ADMINISTRATOR, false, Value::kText, {kAdministratorFile}, true},
    {VELK_CMD_LOCATION, false, Value::kText, {kLocationFile}, true},
    {VELK_CMD_NTP, false, Value::kByte, {kNtpFile}, true},
    {VELK_CMD_DHCP_NTP, false, Value::kByte, {kNtpOptionFile, kHookedNtpFile}, true},
    {VELK_CMD_NTP_SERVER, false, Value::kText, {kNtpServerFile}, true},
    {VELK_CMD_IP_METHOD, true, Value::kByte, {kMethodFile, kBlocksFile}, true},
    {VELK_CMD_DHCP_NOTICE, true, Value::kByte, {kNoticeFile}, false},
    {VELK_CMD_APIPA, true, Value::kByte, {kApipaFile}, true},
    {VELK_CMD_IP_ADDRESS, true, Value::kText, {kAddressFile}, true},
    {VELK_CMD_NETMASK, true, Value::kText, {kNetmaskFile}, true},
    {VELK_CMD_GATEWAY, true, Value::kText, {kGatewayFile}, true},
    {VELK_CMD_DHCP_DNS, true, Value::kByte, {kDnsOptionFile, kScriptFile}, true},
    {VELK_CMD_DNS, true, Value::kServers, {kResolverFile}, true},
    {VELK_CMD_WEB_UPDATE, false, Value::kSchedule, {kUpdaterFile}, true},
};

char Byte(char digit) {
    return static_cast<char>(digit - '0');
}

// The request's data for a value as the input spells it.
std::string DataFor(Value value, std::string text) {
    switch (value) {
        case Value::kText:
            return text.substr(0, text.find('\0')).substr(0, 400);
        case Value::kByte:
            return std::string(1, text.empty() ? '\0' : Byte(text[0]));
        case Value::kServers: {
            std::string slots;
            for (size_t at = 0; slots.size() < 48; at = std::min(at, text.size())) {
                const size_t end = std::min(text.find(',', at), text.size());
                std::string slot = text.substr(at, std::min<size_t>(end - at, 16));
                slot.resize(std::min(slot.find('\0'), slot.size()));
                slot.resize(16);
                slots += slot;
                at = end + 1;
            }
            return slots;
        }
        case Value::kSchedule:
            text.resize(std::max<size_t>(text.size(), 2), '0');
            return std::string{text[0] == '9' ? '\x63' : Byte(text[0]), Byte(text[1])} +
                   text.substr(2, 100);
    }
    return "";
}

class Edit {
  public:
    Edit(const Row& row, const std::string& interface, const std::string& data)
        : row_(row), interface_(row.has_interface ? interface : ""), data_(data) {}

    void Run(const std::vector<std::string>& texts);

  private:
    int Set(Turn& turn) { return turn.Execute(VELK_SET, row_.id, interface_, data_); }
    std::vector<std::string> Read() const;
    void CheckReadBack(Turn& turn);

    const Row& row_;
    const std::string interface_;
    const std::string data_;
};

std::vector<std::string> Edit::Read() const {
    std::vector<std::string> texts;
    for (const EditedFile& file : row_.files) {
        texts.push_back(testkit::ReadFile(file.path));
    }
    return texts;
}

void Edit::CheckReadBack(Turn& turn) {
    Check(turn.Execute(VELK_GET, row_.id, interface_) == LIB_VELK_SUCCESS, "a set can be read");
    Check(testkit::Data(turn.response, data_.size()) == data_, "a get gives what was set");
    Check(turn.response.data[data_.size()] == '\0', "and no more");
}

void Edit::Run(const std::vector<std::string>& texts) {
    Turn turn;
    for (size_t i = 0; i < row_.files.size(); ++i) {
        testkit::WriteFile(row_.files[i].path, i < texts.size() ? texts[i] : "");
    }
    const std::vector<std::string> before = Read();
    const int result = Set(turn);
    const std::vector<std::string> after = Read();
    if (result != LIB_VELK_SUCCESS) {
        Check(after == before, "a set that fails changes nothing");
        return;
    }
    for (size_t i = 0; i < row_.files.size(); ++i) {
        CheckOnlyOwnLines(row_.files[i], before[i], after[i]);
        Check(!testkit::Exists(CopyOf(row_.files[i])), "the edit copy is gone");
    }
    if (!IsUsual({row_.id, interface_, data_}, before)) {
        return;
    }
    if (row_.can_get) {
        CheckReadBack(turn);
    }
    Check(Set(turn) == LIB_VELK_SUCCESS && Read() == after, "a second set changes nothing");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.size() < 3) {
        return 0;
    }
    const size_t letter = static_cast<unsigned char>(input[0]);
    const fuzz::Row& row = fuzz::kRows[(letter - 'a') % fuzz::kRows.size()];
    const std::string interface = input[1] == '1' ? "eth1" : "eth0";
    input.remove_prefix(2);
    const std::string value = fuzz::TakeLine(input);
    fuzz::Edit(row, interface, fuzz::DataFor(row.value, value)).Run(fuzz::Sections(input));
    return 0;
}
