// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server.cpp - receives requests and sends replies.
#include "sandbox/wland/server.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include <poll.h>

#include "sandbox/process/failure.h"
#include "sandbox/wland/log.h"
#include "sandbox/wland/ready_semaphore.h"
#include "sandbox/wland/records.h"

namespace wland {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPostLimit{3000};
constexpr milliseconds kSignalCheckInterval{100};
constexpr milliseconds::rep kLongestWait = 60 * 1000;

}  // namespace

Server::Server(const Behaviour& behaviour, const Records& records, const StopSignals& stop)
    : stop_(stop), behaviour_(behaviour), records_(records) {
}

void Server::Run() {
    while (!stop_.HasArrived()) {
        pollfd waiting[] = {
            {stop_.fd(), POLLIN, 0}, {control_.fd(), POLLIN, 0}, {requests_.fd(), POLLIN, 0}};
        if (poll(waiting, std::size(waiting), MillisecondsToNextReply()) == -1 && errno != EINTR) {
            sandbox::Fail("cannot wait for requests", errno);
        }
        // Orders are applied first, so that one sent before a request affects its reply.
        TakeOrders();
        SendDueReplies();
        if (waiting[2].revents != 0) {
            TakeRequest();
        }
    }
}

void Server::TakeOrders() {
    if (control_.Take(behaviour_)) {
        late_replies_.clear();  // they belong to the previous mode
    }
}

void Server::TakeRequest() {
    const std::optional<Message> request = requests_.Receive();
    if (!request) {
        return;
    }
    switch (request->type) {
        case VELK_WLAN_RESTARTED:
            Log("the wireless interface was restarted");
            break;
        case VELK_WLAN_STORE:
            records_.conf = request->body.conf;
            LogDetail("stored a configuration");
            break;
        case VELK_WLAN_REPORT:
        case VELK_WLAN_STATE:
            Answer(*request);
            break;
        default:
            Log("ignored a message of type " + std::to_string(request->type));
            break;
    }
}

void Server::Answer(const Message& request) {
    const bool is_state = request.type == VELK_WLAN_STATE;
    LogDetail(is_state ? "received a query for the state"
                       : "received a query for the configuration");
    if (behaviour_.mode == ReplyMode::kSilent) {
        return;
    }
    Message good{};
    good.type = request.type;
    if (is_state) {
        good.body.state = records_.state.value_or(StateOf(records_.conf));
    } else {
        good.body.conf = records_.conf;
    }
    Reply(ReplyBytes(behaviour_.mode, good));
}

// A program that was killed while it waited leaves a post in the semaphore. The next request then
// finds that post before its own program has made the reply socket, and the send fails. The post of
// the program itself is still to come, so wait for the next one.
void Server::Reply(const std::string& bytes) {
    const ReadySemaphore ready;
    const Clock::time_point deadline = Clock::now() + kPostLimit;
    if (!ready.exists()) {
        Log(std::string("no reply sent: cannot open the semaphore: ") + strerror(ready.error()));
        return;
    }
    std::string reason = "the program did not post the semaphore";
    while (WaitForPost(ready, deadline)) {
        if (behaviour_.mode == ReplyMode::kLate) {
            late_replies_.push_back({Clock::now() + behaviour_.delay, bytes});
            return;
        }
        const int error = SendReply(bytes);
        if (error == 0) {
            LogDetail("replied with " + std::to_string(bytes.size()) + " bytes");
            return;
        }
        reason = strerror(error);
    }
    Log("no reply sent: " + reason);
}

bool Server::WaitForPost(const ReadySemaphore& ready, Clock::time_point deadline) const {
    while (Clock::now() < deadline && !stop_.HasArrived()) {
        if (ready.Take(kSignalCheckInterval)) {
            return true;
        }
    }
    return false;
}

void Server::SendDueReplies() {
    while (!late_replies_.empty() && late_replies_.front().due <= Clock::now()) {
        const int error = SendReply(late_replies_.front().bytes);
        Log(error == 0 ? "sent a late reply"
                       : std::string("late reply not delivered: ") + strerror(error));
        late_replies_.pop_front();
    }
}

// Returns the timeout for poll(2): -1 if no reply is due.
int Server::MillisecondsToNextReply() const {
    if (late_replies_.empty()) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<milliseconds>(late_replies_.front().due - Clock::now()).count();
    return static_cast<int>(std::clamp<milliseconds::rep>(left, 0, kLongestWait));
}

}  // namespace wland
