// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// foreign_listener.cpp - listens in the place of a simulated device and hands over a process.
//
// Usage: foreign_listener ADDRESS [PID]. ADDRESS is a path or a name in the network, as
// "velk-sandbox/0/1". It prints "listening", then each message it receives, and answers each as a
// device does, with a pidfd of PID.
//
// foreign_listener --full ADDRESS... listens everywhere there with a full queue, prints "listening"
// and accepts nobody.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int kLongestQueue = 8;

// Calls bind or connect for the address.
bool AtAddress(int (*call)(int, const sockaddr*, socklen_t), int descriptor,
               const std::string& name) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    // A path that begins with a NUL is a name in the network.
    const std::string path = name.front() == '/' ? name : '\0' + name;
    std::ranges::copy(path, address.sun_path);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    return call(descriptor, reinterpret_cast<const sockaddr*>(&address), size) == 0;
}

int MakeSocket() {
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

// -1 if it cannot listen.
int Listen(const std::string& name, int longest_queue) {
    const int listener = MakeSocket();
    return AtAddress(bind, listener, name) && listen(listener, longest_queue) == 0 ? listener : -1;
}

// The kernel lets one process more than the length of the queue wait: this process itself.
bool ListenWithFullQueue(const std::string& name) {
    return Listen(name, 0) != -1 && AtAddress(connect, MakeSocket(), name);
}

void Answer(int customer, int process) {
    char text[] = "done";
    iovec part = {text, strlen(text)};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(process))] = {};
    msghdr message = {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (process != -1) {
        message.msg_control = control;
        message.msg_controllen = sizeof(control);
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(process));
        memcpy(CMSG_DATA(header), &process, sizeof(process));
    }
    (void)sendmsg(customer, &message, MSG_NOSIGNAL);
}

void Print(const std::string& line) {
    (void)puts(line.c_str());
    (void)fflush(stdout);
}

void Serve(int listener, int process) {
    for (;;) {
        const int customer = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        char order[256];
        const ssize_t size = recv(customer, order, sizeof(order), 0);
        if (size > 0) {
            Print(std::string(order, static_cast<size_t>(size)));
            Answer(customer, process);
        }
        (void)close(customer);
    }
}

int RefuseToStart() {
    (void)fprintf(stderr, "foreign_listener: cannot listen\n");
    return EXIT_FAILURE;
}

int AcceptNobody(char** names) {
    for (; *names != nullptr; ++names) {
        if (!ListenWithFullQueue(*names)) {
            return RefuseToStart();
        }
    }
    Print("listening");
    return pause();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 1 && strcmp(argv[1], "--full") == 0) {
        return AcceptNobody(argv + 2);
    }
    const int listener = argc < 2 ? -1 : Listen(argv[1], kLongestQueue);
    if (listener == -1) {
        return RefuseToStart();
    }
    const int process = argc < 3 ? -1 : static_cast<int>(syscall(SYS_pidfd_open, atoi(argv[2]), 0));
    Print("listening");
    Serve(listener, process);
}
