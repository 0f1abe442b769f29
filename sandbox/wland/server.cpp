// server.cpp - takes requests and replies to them.
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
constexpr milliseconds kLookAtSignals{100};
constexpr milliseconds::rep kLongestWait = 60 * 1000;

}  // namespace

Server::Server(const Behaviour& behaviour, const StopSignals& stop)
    : stop_(stop), behaviour_(behaviour), conf_(StartConfiguration()) {
}

void Server::Run() {
    while (!stop_.HasCome()) {
        pollfd waiting[] = {
            {stop_.fd(), POLLIN, 0}, {control_.fd(), POLLIN, 0}, {requests_.fd(), POLLIN, 0}};
        if (poll(waiting, std::size(waiting), MillisecondsToNextReply()) == -1 && errno != EINTR) {
            sandbox::Fail("cannot wait for requests", errno);
        }
        // An order given before a request was sent is followed before that request is answered.
        TakeOrders();
        SendDueReplies();
        if (waiting[2].revents != 0) {
            TakeRequest();
        }
    }
}

void Server::TakeOrders() {
    if (control_.Take(behaviour_)) {
        late_replies_.clear();  // they belong to a behaviour that is over
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
            conf_ = request->body.conf;
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
    LogDetail(is_state ? "asked for the state" : "asked for the configuration");
    if (behaviour_.mode == ReplyMode::kSilent) {
        return;
    }
    Message good{};
    good.type = request.type;
    if (is_state) {
        good.body.state = StateOf(conf_);
    } else {
        good.body.conf = conf_;
    }
    Reply(ReplyBytes(behaviour_.mode, good));
}

// A program that was killed while it waited has left its post behind. It is met here by the next
// one's request, before that one has made its socket: the post that counts is still to come then.
void Server::Reply(const std::string& bytes) {
    const ReadySemaphore ready;
    const Clock::time_point deadline = Clock::now() + kPostLimit;
    if (!ready.exists()) {
        Log(std::string("no reply sent, no semaphore: ") + strerror(ready.error()));
        return;
    }
    std::string why = "no post came";
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
        why = strerror(error);
    }
    Log("no reply sent: " + why);
}

bool Server::WaitForPost(const ReadySemaphore& ready, Clock::time_point deadline) const {
    while (Clock::now() < deadline && !stop_.HasCome()) {
        if (ready.Take(kLookAtSignals)) {
            return true;
        }
    }
    return false;
}

void Server::SendDueReplies() {
    while (!late_replies_.empty() && late_replies_.front().due <= Clock::now()) {
        const int error = SendReply(late_replies_.front().bytes);
        Log(error == 0 ? "sent a late reply"
                       : std::string("late reply not taken: ") + strerror(error));
        late_replies_.pop_front();
    }
}

// As poll(2) takes it: -1 when no reply is due.
int Server::MillisecondsToNextReply() const {
    if (late_replies_.empty()) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<milliseconds>(late_replies_.front().due - Clock::now()).count();
    return static_cast<int>(std::clamp<milliseconds::rep>(left, 0, kLongestWait));
}

}  // namespace wland
