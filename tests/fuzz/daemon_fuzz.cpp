// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// daemon_fuzz.cpp - every record that the wireless daemon may send, over the real sockets: a get
// returns its field and nothing more, a set sends the other fields back unchanged.
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

#include "fuzz/kit/daemon_record.h"
#include "fuzz/kit/fuzz_device.h"
#include "fuzz/kit/lines.h"
#include "support/paths.h"

namespace fuzz {
namespace {

using testkit::kReplySocket;
using testkit::kRequestSocket;

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

    // Returns the datagrams that the library has sent since the last call.
    std::vector<std::string> Received();

    void SetReply(const std::string& reply) { reply_ = reply; }

  private:
    void Send();

    std::string reply_;
    int socket_;
};

Daemon::Daemon(std::string reply) : reply_(std::move(reply)) {
    const testkit::Unrecorded unrecorded;
    unlink(kRequestSocket);
    socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = AddressOf(kRequestSocket);
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
    const sockaddr_un address = AddressOf(kReplySocket);
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

// Returns the body that the library takes from a reply: it fills up a short one and cuts a long
// one.
std::string BodyOf(std::string reply) {
    reply.resize(kMessage);
    return reply.substr(kHeader);
}

bool IsFilledUp(const std::string& data, const std::string& text) {
    return data == text + std::string(data.size() - text.size(), '\0');
}

// No key or pass phrase is ever logged, nor run. The mutator makes secrets of one repeated
// character, which no line has by chance.
void CheckSecretStaysSecret(const RecordRow& row, const std::string& text) {
    constexpr size_t kTellingLength = 5;
    const bool is_secret = row.field == Field::kText && row.id != VELK_CMD_SSID;
    if (!is_secret || text.size() < kTellingLength ||
        text.find_first_not_of(text[0]) != std::string::npos) {
        return;
    }
    for (const std::string& line : testkit::LibcRecorder::Get().Story()) {
        Check(!Has(line, text), "a secret is neither logged nor run");
    }
}

void CheckGet(Turn& turn, const RecordRow& row, const std::string& body) {
    const Answer expected = AnswerFrom(row, body);
    const int result = turn.Execute(VELK_GET, row.id, "eth1");
    Check(result == (expected.succeeds ? LIB_VELK_SUCCESS : LIB_VELK_FAILURE),
          "a get succeeds as the record's field allows");
    Check(IsFilledUp(testkit::Data(turn.response), expected.bytes),
          "a get returns the field of the record");
    CheckSecretStaysSecret(row, expected.bytes);
}

void RunGet(Turn& turn, Daemon& daemon, const RecordRow& row, const std::string& body) {
    CheckGet(turn, row, body);
    const std::vector<std::string> sent = daemon.Received();
    Check(sent.size() == 1 && sent[0].size() == kMessage, "one query was sent");
}

// Returns the part of a value that the library uses.
std::string Counting(const RecordRow& row, const std::string& value) {
    if (row.field == Field::kText) {
        return TextIn(value);
    }
    return {value.empty() ? '\0' : value[0]};
}

void RunSet(Turn& turn, Daemon& daemon, const RecordRow& row, const std::string& body,
            const std::string& value) {
    const std::string counting = Counting(row, value);
    const int result = turn.Execute(VELK_SET, row.id, "eth1", value);
    const std::vector<std::string> sent = daemon.Received();
    CheckSecretStaysSecret(row, counting);
    if (!CanSet(row, body, counting)) {
        Check(result == LIB_VELK_INVALID_PARAMETER, "a set takes no other value");
        Check(sent.size() == 1, "a set that fails stores nothing");
        return;
    }
    Check(result == LIB_VELK_SUCCESS, "a set takes the values that there are");
    Check(sent.size() == 2 && TypeOf(sent[1]) == VELK_WLAN_STORE, "the record was stored");
    const std::string stored = sent[1].substr(kHeader);
    Check(stored == BodyWith(row, body, counting), "the value was put in its field");
    daemon.SetReply(std::string(kHeader, '\0') + stored);
    CheckGet(turn, row, stored);
    (void)daemon.Received();
    Check(turn.Execute(VELK_SET, row.id, "eth1", value) == LIB_VELK_SUCCESS,
          "a set can be repeated");
    Check(daemon.Received().back().substr(kHeader) == stored, "a second set changes nothing");
}

}  // namespace
}  // namespace fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < fuzz::kHead) {
        return 0;
    }
    const fuzz::RecordRow& row =
        fuzz::kRecordRows[static_cast<size_t>(data[0]) % fuzz::kRecordRows.size()];
    const bool is_set = data[1] == 's';
    const std::string rest(reinterpret_cast<const char*>(data) + fuzz::kHead, size - fuzz::kHead);
    const size_t length = std::min<size_t>(data[2], rest.size());
    const std::string reply = rest.substr(0, length);

    testkit::WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
    fuzz::Turn turn;
    turn.shell().Prints("sudo /usr/sbin/ethtool", {"\tLink detected: no\n"});
    fuzz::Daemon daemon(reply);
    if (is_set && row.can_set) {
        const std::string value = rest.substr(length, VELK_DATA_SIZE);
        fuzz::RunSet(turn, daemon, row, fuzz::BodyOf(reply), value);
    } else {
        fuzz::RunGet(turn, daemon, row, fuzz::BodyOf(reply));
    }
    return 0;
}
