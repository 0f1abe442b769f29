// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fake_daemon.h - a wireless daemon within the test, over the real sockets and semaphore.
#ifndef TESTS_SUPPORT_FAKE_DAEMON_H_
#define TESTS_SUPPORT_FAKE_DAEMON_H_

#include <atomic>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "velk.h"

namespace testkit {

// Stores the configuration it is sent, and answers queries once the library has posted the
// semaphore. Its own calls are not recorded.
class FakeDaemon {
  public:
    // The daemon works in a thread of its own, or inside the library's select(2). The latter makes
    // tests independent of timing.
    enum class Turn { kOwnThread, kInSelect };

    explicit FakeDaemon(Turn turn = Turn::kOwnThread);
    ~FakeDaemon() { Stop(); }
    FakeDaemon(const FakeDaemon&) = delete;
    FakeDaemon& operator=(const FakeDaemon&) = delete;

    // Takes all requests that are waiting. A daemon without a thread takes them only here.
    void ServePending();

    // Ends the daemon and waits until its sockets are removed.
    void Stop();

    void SetConf(const SMsgConf& conf);
    void SetState(const SMsgState& state);
    // Answers every query with these bytes instead of a proper reply.
    void ReplyWith(const std::string& bytes);
    // From now on, answers no query.
    void StaySilent();

    SMsgConf conf() const;
    // Returns the datagrams received so far.
    std::vector<std::string> requests() const;
    // Returns the message types of these datagrams.
    std::vector<int> types() const;

  private:
    void Serve();
    bool ServeOne(int timeout_ms);
    // Handles one datagram. Releases `work` while it waits for the library.
    void Handle(const std::string& datagram, std::unique_lock<std::mutex>& work);
    void Reply(const std::string& bytes);
    std::string ReplyTo(int type) const;

    mutable std::mutex mutex_;
    const Turn turn_;
    int socket_ = -1;
    UMsgData conf_{};
    UMsgData state_{};
    std::optional<std::string> raw_reply_;
    bool is_silent_ = false;
    std::vector<std::string> requests_;
    std::atomic<bool> serving_ = false;
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_FAKE_DAEMON_H_
