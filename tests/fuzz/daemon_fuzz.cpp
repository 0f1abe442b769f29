// daemon_fuzz.cpp - every record the wireless daemon may send, over the real sockets: gets take no
// byte from beyond a field, sets send back what they do not change.
//
// An input is the row's letter, "g" or "s", the datagram's length, its bytes, then the value of a
// set.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "frame/unique_fd.h"
#include "fuzz/kit/fuzz_device.h"

namespace fuzz {
namespace {

constexpr char kRequestPath[] = "/tmp/WlanAplToWlanSock";
constexpr char kReplyPath[] = "/tmp/WlanAplFromWlanSock";
constexpr size_t kHeader = 4;  // in front of a message's body
constexpr size_t kMessage = kHeader + sizeof(UMsgData);

struct Row {
    uint32_t id;
    size_t offset, size;  // of the field in the configuration; no size for a fact
};

#define FIELD(member) offsetof(SMsgConf, member), sizeof(SMsgConf::member)
const std::vector<Row> kRows = {
    {VELK_CMD_STANDARDS_ENABLED, FIELD(dot11_phy_conf)},
    {VELK_CMD_SERVICE_SET, FIELD(service_set)},
    {VELK_CMD_SSID, 0, 34},
    {VELK_CMD_CHANNEL, FIELD(channel)},
    {VELK_CMD_ENCRYPTION, FIELD(encryption)},
    {VELK_CMD_AUTHENTICATION, FIELD(auth)},
    {VELK_CMD_WEP_KEY_1, 48, 30},
    {VELK_CMD_WEP_KEY_2, 78, 30},
    {VELK_CMD_WEP_KEY_3, 108, 30},
    {VELK_CMD_WEP_KEY_4, 138, 30},
    {VELK_CMD_WEP_DEFAULT_KEY, FIELD(wep_default)},
    {VELK_CMD_PSK, 168, 66},
    {VELK_CMD_HARDWARE_VERSION, 0, 0},
    {VELK_CMD_SOFTWARE_VERSION, 0, 0},
    {VELK_CMD_STANDARD, 0, 0},
    {VELK_CMD_REGION, 0, 0},
    {VELK_CMD_RATE, 0, 0},
    {VELK_CMD_ACCESS_POINT, 0, 0},
    {VELK_CMD_SIGNAL, 0, 0},
};
#undef FIELD

sockaddr_un AddressOf(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strncpy(address.sun_path, path, sizeof(address.sun_path) - 1);
    return address;
}

// The daemon's end, in this thread: it answers when the library begins to wait.
class Daemon {
  public:
    explicit Daemon(std::string reply);
    ~Daemon();
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    // What the library has sent since the last call.
    std::vector<std::string> Received();

    void SetReply(const std::string& reply) { reply_ = reply; }

  private:
    void Send();

    std::string reply_;
    int socket_;
};

Daemon::Daemon(std::string reply) : reply_(std::move(reply)) {
    const testkit::Unrecorded unrecorded;
    unlink(kRequestPath);
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = AddressOf(kRequestPath);
    Check(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0,
          "the daemon has its socket");
    testkit::LibcRecorder::Get().OnCall(testkit::Call::kSelect, [this](const auto&) { Send(); });
}

Daemon::~Daemon() {
    const testkit::Unrecorded unrecorded;
    close(socket_);
}

void Daemon::Send() {
    const testkit::Unrecorded unrecorded;
    const sockaddr_un address = AddressOf(kReplyPath);
    (void)sendto(socket_, reply_.data(), reply_.size(), 0,
                 reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

std::vector<std::string> Daemon::Received() {
    const testkit::Unrecorded unrecorded;
    std::vector<std::string> messages;
    char message[1024];
    for (ssize_t size = 0; (size = recv(socket_, message, sizeof(message), 0)) >= 0;) {
        messages.emplace_back(message, static_cast<size_t>(size));
    }
    return messages;
}

int TypeOf(const std::string& message) {
    int16_t type = 0;
    memcpy(&type, message.data(), sizeof(type));
    return type;
}

// What the library makes of a reply: a short one is filled up, a long one cut.
std::string BodyOf(std::string reply) {
    reply.resize(kMessage);
    return reply.substr(kHeader);
}

std::string WithoutField(const Row& row, std::string body) {
    return body.erase(row.offset, row.size);
}

std::string TextIn(const std::string& body, size_t offset, size_t size) {
    const std::string field = body.substr(offset, size);
    return field.substr(0, field.find('\0'));
}

std::string RevisionIn(const std::string& product) {
    const size_t key = product.find("Rev= ");
    return key == std::string::npos ? "" : product.substr(key + 5);
}

std::string MacIn(const std::string& body) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : body.substr(142, 6)) {
        const auto byte = static_cast<unsigned char>(c);
        text += {kDigits[byte / 16], kDigits[byte % 16]};
    }
    return text;
}

// A number of the record, one higher; a get of an unknown one does not succeed.
std::string CodeIn(const std::string& body, size_t offset) {
    Check(body[offset] >= 0 && body[offset] <= 2 && body[offset + 1] == 0, "the code is known");
    return {static_cast<char>(body[offset] + 1)};
}

// What a get of a fact gives, read from the bytes of the record.
std::string FactIn(const std::string& body, uint32_t id) {
    switch (id) {
        case VELK_CMD_HARDWARE_VERSION:
            return RevisionIn(TextIn(body, 0, 64));
        case VELK_CMD_SOFTWARE_VERSION:
            return TextIn(body, 64, 32);
        case VELK_CMD_REGION:
            return CodeIn(body, 96);
        case VELK_CMD_ACCESS_POINT:
            return MacIn(body);
        case VELK_CMD_STANDARD:
            return CodeIn(body, 152);
        case VELK_CMD_RATE:
            return body.substr(156, 4);
        case VELK_CMD_SIGNAL:
            return body.substr(160, 4);
        default:
            Check(false, "the row is that of a fact");
            return "";
    }
}

bool IsFilledUp(const std::string& data, const std::string& text) {
    return data == text + std::string(data.size() - text.size(), '\0');
}

void RunGet(Turn& turn, Daemon& daemon, const Row& row, const std::string& body) {
    const int result = turn.Execute(VELK_GET, row.id, "eth1");
    const std::string data = testkit::Data(turn.response);
    const size_t end = data.find_last_not_of('\0');
    if (result != LIB_VELK_SUCCESS) {
        Check(end == std::string::npos || end == 0, "a get that fails writes a byte at most");
    } else if (row.size > sizeof(uint16_t)) {
        uint16_t length = 0;
        memcpy(&length, &body[row.offset], sizeof(length));
        Check(length <= row.size - sizeof(length), "no text is longer than its field");
        const std::string text = body.substr(row.offset + sizeof(length), length);
        Check(IsFilledUp(data, text), "the text is the field's");
    } else if (row.size == 0) {
        Check(IsFilledUp(data, FactIn(body, row.id)), "the fact is the record's");
    }
    const std::vector<std::string> sent = daemon.Received();
    Check(sent.size() == 1 && sent[0].size() == kMessage, "one query was sent");
}

void RunSet(Turn& turn, Daemon& daemon, const Row& row, const std::string& body,
            const std::string& value) {
    const int result = turn.Execute(VELK_SET, row.id, "eth1", value);
    const std::vector<std::string> sent = daemon.Received();
    if (result != LIB_VELK_SUCCESS) {
        Check(sent.size() <= 1, "a set that fails stores nothing");
        return;
    }
    Check(sent.size() == 2 && TypeOf(sent[1]) == VELK_WLAN_STORE, "the record was stored");
    const std::string stored = sent[1].substr(kHeader);
    Check(WithoutField(row, stored) == WithoutField(row, body),
          "the other fields are as they were");
    daemon.SetReply(std::string(kHeader, '\0') + stored);
    Check(turn.Execute(VELK_GET, row.id, "eth1") == LIB_VELK_SUCCESS, "a set can be read");
    const size_t size = row.size > sizeof(uint16_t) ? strnlen(value.c_str(), value.size()) : 1;
    Check(testkit::Data(turn.response, size) == value.substr(0, size), "a get gives what was set");
    (void)daemon.Received();
    Check(turn.Execute(VELK_SET, row.id, "eth1", value) == LIB_VELK_SUCCESS,
          "a set can be repeated");
    Check(daemon.Received().back().substr(kHeader) == stored, "a second set changes nothing");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr size_t kHead = 3;
    if (size < kHead) {
        return 0;
    }
    const fuzz::Row& row = fuzz::kRows[static_cast<size_t>(data[0]) % fuzz::kRows.size()];
    const bool is_set = data[1] == 's';
    const std::string rest(reinterpret_cast<const char*>(data) + kHead, size - kHead);
    const size_t length = std::min<size_t>(data[2], rest.size());
    const std::string reply = rest.substr(0, length);

    testkit::WriteFile("/proc/bus/usb/devices", "S:  Product=QT4408RKM\n");
    fuzz::Turn turn;
    turn.shell().Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
    fuzz::Daemon daemon(reply);
    if (is_set && row.size > 0) {
        const std::string value = rest.substr(length, VELK_DATA_SIZE);
        fuzz::RunSet(turn, daemon, row, fuzz::BodyOf(reply), value);
    } else {
        fuzz::RunGet(turn, daemon, row, fuzz::BodyOf(reply));
    }
    return 0;
}
