// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_server.cpp - the SNTP server of the router.
#include "sandbox/hardware/time_server.h"

#include <cerrno>
#include <cstdint>
#include <ctime>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "lib/base/unique_fd.h"
#include "sandbox/process/failure.h"

namespace sandbox {
namespace {

constexpr uint16_t kPort = 123;
constexpr uint32_t kSecondsFrom1900To1970 = 2208988800;
constexpr uint64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr uint8_t kServerOfVersion4 = 4 << 3 | 4;
constexpr uint8_t kPrimaryServer = 1;
constexpr int8_t kMicrosecond = -20;  // as a power of two of a second

struct Timestamp {
    uint32_t seconds;  // since 1900, in network byte order
    uint32_t fraction;
};

struct Packet {
    uint8_t mode;
    uint8_t stratum;
    int8_t poll;
    int8_t precision;
    uint32_t root_delay;
    uint32_t root_dispersion;
    char reference[4];
    Timestamp reference_time;
    Timestamp origin_time;
    Timestamp receive_time;
    Timestamp transmit_time;
};
static_assert(sizeof(Packet) == 48);

Timestamp Now() {
    timespec now;
    (void)clock_gettime(CLOCK_REALTIME, &now);
    const uint64_t fraction = (static_cast<uint64_t>(now.tv_nsec) << 32) / kNanosecondsPerSecond;
    return {htonl(static_cast<uint32_t>(now.tv_sec) + kSecondsFrom1900To1970),
            htonl(static_cast<uint32_t>(fraction))};
}

Packet AnswerTo(const Packet& query, const Timestamp& arrival) {
    Packet answer{};
    answer.mode = kServerOfVersion4;
    answer.stratum = kPrimaryServer;
    answer.poll = query.poll;
    answer.precision = kMicrosecond;
    answer.reference[0] = 'L';
    answer.reference[1] = 'O';
    answer.reference[2] = 'C';
    answer.reference[3] = 'L';
    answer.reference_time = arrival;
    answer.origin_time = query.transmit_time;
    answer.receive_time = arrival;
    answer.transmit_time = Now();
    return answer;
}

velk::UniqueFd OpenService() {
    velk::UniqueFd service(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kPort);
    if (service.get() == -1 ||
        bind(service.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == -1) {
        Fail("cannot open the time server's socket", errno);
    }
    return service;
}

}  // namespace

void ServeTime() {
    const velk::UniqueFd service = OpenService();
    for (;;) {
        Packet query;
        sockaddr_in client;
        socklen_t client_size = sizeof(client);
        auto* address = reinterpret_cast<sockaddr*>(&client);
        const ssize_t size =
            recvfrom(service.get(), &query, sizeof(query), 0, address, &client_size);
        if (size == static_cast<ssize_t>(sizeof(query))) {
            const Packet answer = AnswerTo(query, Now());
            (void)sendto(service.get(), &answer, sizeof(answer), 0, address, client_size);
        }
    }
}

}  // namespace sandbox
