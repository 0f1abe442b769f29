// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_meetings.cpp - programs that talk to the wireless daemon at the same time.
#include "schedules/wireless_meetings.h"

#include <array>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "fault/kit/scene.h"
#include "lib/base/unique_fd.h"
#include "schedules/kit/board.h"
#include "schedules/kit/shared_device.h"
#include "support/device_test.h"
#include "support/paths.h"
#include "velk.h"
#include "velk/wlan.h"

namespace schedules {
namespace {

constexpr char kFirst[] = "first";
constexpr char kSecond[] = "second";
constexpr char kDaemon[] = "daemon";

constexpr std::string_view kNewSsid = "office";
constexpr char kNewChannel = 9;

// ---- The daemon --------------------------------------------------------------------------------

constexpr size_t kMessageSize = 240;
constexpr size_t kBody = 4;
constexpr int kReadySeconds = 3;

sockaddr_un AddressOf(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    strcpy(address.sun_path, path);
    return address;
}

velk::UniqueFd OpenRequestSocket() {
    velk::UniqueFd fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = AddressOf(testkit::kRequestSocket);
    (void)unlink(testkit::kRequestSocket);
    (void)bind(fd.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    return fd;
}

// Waits until the library signals that its reply socket exists.
bool IsAnswerAwaited() {
    sem_t* const ready = sem_open(testkit::kSemaphoreName, 0, 0U, 0U);
    if (ready == SEM_FAILED) {
        return false;
    }
    timespec end{};
    (void)clock_gettime(CLOCK_REALTIME, &end);
    end.tv_sec += kReadySeconds;
    const bool is_posted = sem_timedwait(ready, &end) == 0;
    (void)sem_close(ready);
    return is_posted;
}

void Reply(const SMsgConf& conf) {
    std::array<char, kMessageSize> message{};
    memcpy(message.data() + kBody, &conf, sizeof(conf));
    const velk::UniqueFd fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = AddressOf(testkit::kReplySocket);
    (void)sendto(fd.get(), message.data(), message.size(), MSG_DONTWAIT,
                 reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

// Serves until it is killed.
int Serve(int requests, SMsgConf& conf) {
    EnterDevice();
    std::array<char, kMessageSize> message{};
    while (recv(requests, message.data(), message.size(), 0) == kMessageSize) {
        int16_t type = 0;
        memcpy(&type, message.data(), sizeof(type));
        if (type == VELK_WLAN_STORE) {
            memcpy(&conf, message.data() + kBody, sizeof(conf));
        } else if (type == VELK_WLAN_REPORT && IsAnswerAwaited()) {
            Reply(conf);
        }
    }
    return 1;
}

// ---- The callers -------------------------------------------------------------------------------

struct Board {
    std::array<_velk_request, 2> answers{};
    SMsgConf conf{};
};

SMsgConf WithSsid(SMsgConf conf) {
    memset(conf.ssid, 0, sizeof(conf.ssid));
    kNewSsid.copy(conf.ssid, sizeof(conf.ssid));
    conf.ssid_length = static_cast<decltype(conf.ssid_length)>(kNewSsid.size());
    return conf;
}

SMsgConf WithChannel(SMsgConf conf) {
    conf.channel = kNewChannel;
    return conf;
}

bool AreEqual(const SMsgConf& one, const SMsgConf& other) {
    return memcmp(&one, &other, sizeof(one)) == 0;
}

int ResultOf(const Course& course, const char* caller) {
    const auto found = course.results.find(caller);
    return found == course.results.end() ? 1 : found->second;
}

std::string ResultText(const Course& course) {
    return "first returned " + std::to_string(ResultOf(course, kFirst)) + ", second " +
           std::to_string(ResultOf(course, kSecond));
}

class WirelessMeeting : public Meeting {
  public:
    WirelessMeeting(const _velk_request& first, const _velk_request& second)
        : requests_{first, second} {}

    std::vector<Caller> Prepare() override {
        MakeDevice();
        requests_socket_ = OpenRequestSocket();
        *board_ = {.conf = fault::WirelessConfiguration()};
        return {{kFirst, [this] { return Execute(0); }},
                {kSecond, [this] { return Execute(1); }},
                {kDaemon, [this] { return Serve(requests_socket_.get(), board_->conf); },
                 Role::kService}};
    }

    std::string Check(const Course& course) override {
        const std::string remains = FindRemains(course);
        return remains.empty() ? CheckAnswers(course) : remains;
    }

  protected:
    virtual std::string CheckAnswers(const Course& course) = 0;

    const Board& board() const { return *board_; }

  private:
    int Execute(size_t number) {
        EnterDevice();
        return execute_velk_command(&requests_.at(number), &board_->answers.at(number));
    }

    const std::array<_velk_request, 2> requests_;
    const Shared<Board> board_;
    velk::UniqueFd requests_socket_;
};

_velk_request SetOfSsid() {
    return testkit::MakeRequest(VELK_SET, VELK_CMD_SSID, "eth1", kNewSsid);
}

class TwoWirelessSets final : public WirelessMeeting {
  public:
    TwoWirelessSets()
        : WirelessMeeting(SetOfSsid(), testkit::MakeRequest(VELK_SET, VELK_CMD_CHANNEL, "eth1",
                                                            std::string(1, kNewChannel))) {}

  private:
    std::string CheckAnswers(const Course& course) override {
        SMsgConf expected = fault::WirelessConfiguration();
        bool is_any_done = false;
        for (const char* caller : {kFirst, kSecond}) {
            const int result = ResultOf(course, caller);
            if (result != LIB_VELK_SUCCESS && result != LIB_VELK_LOCKED) {
                return ResultText(course);
            }
            if (result == LIB_VELK_SUCCESS) {
                is_any_done = true;
                expected = caller == kFirst ? WithSsid(expected) : WithChannel(expected);
            }
        }
        const bool is_right = is_any_done && AreEqual(board().conf, expected);
        return is_right ? "" : "a set is lost: " + ResultText(course);
    }
};

// A set that fails has stored nothing.
class WirelessGetAndSet final : public WirelessMeeting {
  public:
    WirelessGetAndSet()
        : WirelessMeeting(testkit::MakeRequest(VELK_GET, VELK_CMD_SSID, "eth1"), SetOfSsid()) {}

  private:
    std::string CheckAnswers(const Course& course) override {
        const int got = ResultOf(course, kFirst);
        const int set = ResultOf(course, kSecond);
        if ((got != LIB_VELK_SUCCESS && got != LIB_VELK_FAILURE) ||
            (set != LIB_VELK_SUCCESS && set != LIB_VELK_FAILURE)) {
            return ResultText(course);
        }
        const SMsgConf before = fault::WirelessConfiguration();
        const SMsgConf expected = set == LIB_VELK_SUCCESS ? WithSsid(before) : before;
        if (!AreEqual(board().conf, expected)) {
            return "the daemon has another configuration: " + ResultText(course);
        }
        const std::string ssid = board().answers[0].data;
        return got != LIB_VELK_SUCCESS || ssid == "home" || ssid == kNewSsid
                   ? ""
                   : "the get returned '" + ssid + "'";
    }
};

}  // namespace

std::unique_ptr<Meeting> WirelessSetMeetsSet() {
    return std::make_unique<TwoWirelessSets>();
}

std::unique_ptr<Meeting> WirelessGetMeetsSet() {
    return std::make_unique<WirelessGetAndSet>();
}

}  // namespace schedules
