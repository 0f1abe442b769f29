// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// web_page.cpp - the settings page of a device, for a browser on the machine (--web).
//
// The socket that listens belongs to the network of the machine, and is the only thing of it that
// the device has. Each connection gets a web server of its own, with the connection as its standard
// input and output, as inetd starts it.
#include "sandbox/session/web_page.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/device/mounts.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/programs.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kUser[] = "admin";
constexpr char kWebServer[] = "busybox";
constexpr int kMostConnections = 48;
constexpr int kQueue = 16;
constexpr char kUsersFolder[] = "/etc/velk";
// A browser that neither sends nor reads for so long loses its connection.
constexpr timeval kSilence{.tv_sec = 30, .tv_usec = 0};
constexpr int kReapMilliseconds = 1000;

// ---- On the machine ----------------------------------------------------------------------------

uint16_t PortOf(int listener) {
    sockaddr_in address{};
    socklen_t length = sizeof(address);
    if (getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) == -1) {
        Fail("cannot read the port of the settings page", errno);
    }
    return ntohs(address.sin_port);
}

void CheckInstalled(const WebPage& page) {
    std::error_code unseen;
    if (!fs::exists(page.program, unseen) || !fs::is_directory(page.folder, unseen)) {
        throw Failure("--web needs the settings page, which is not installed",
                      "install the package velk-web");
    }
    if (FindProgram(kWebServer).empty()) {
        throw Failure("--web needs busybox, which is not installed", "install busybox");
    }
}

// ---- On the device -----------------------------------------------------------------------------

// Other users of the machine reach its loopback interface, too.
std::string NewPassword() {
    constexpr char kLetters[] = "abcdefghijkmnpqrstuvwxyz23456789";
    std::array<unsigned char, 12> random{};
    if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
        Fail("cannot make a password", errno);
    }
    std::string password;
    for (const unsigned char byte : random) {
        password.push_back(kLetters[byte % (sizeof(kLetters) - 1)]);
    }
    return password;
}

[[noreturn]] void RunSetPassword(const WebPage& page, int input) {
    (void)dup2(input, STDIN_FILENO);
    (void)execl(page.program.c_str(), page.program.c_str(), "--set-password", kUser, nullptr);
    _exit(kCannotExecute);
}

void SetPassword(const WebPage& page, const std::string& password) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd reader(ends[0]);
    velk::UniqueFd writer(ends[1]);
    const pid_t child = fork();
    if (child == 0) {
        RunSetPassword(page, reader.get());
    }
    (void)!write(writer.get(), password.data(), password.size());
    (void)writer.Reset();
    int status = 1;
    if (child == -1 || waitpid(child, &status, 0) == -1 || status != 0) {
        throw Failure("the password of the settings page could not be set");
    }
}

[[noreturn]] void RunWebServer(const WebPage& page, const std::string& web_server, int connection) {
    (void)setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &kSilence, sizeof(kSilence));
    (void)setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &kSilence, sizeof(kSilence));
    (void)dup2(connection, STDIN_FILENO);
    (void)dup2(connection, STDOUT_FILENO);
    (void)signal(SIGPIPE, SIG_DFL);
    const std::string configuration = page.folder + "/../httpd.conf";
    (void)execl(web_server.c_str(), "busybox", "httpd", "-i", "-h", page.folder.c_str(), "-c",
                configuration.c_str(), nullptr);
    _exit(kCannotExecute);
}

// Waits for a web server that has ended, if there is one.
bool ReapOne() {
    return waitpid(-1, nullptr, WNOHANG) > 0;
}

// Waits for a connection, or a while for the end of a web server.
bool AwaitConnection(int listener, int running) {
    pollfd waiting{listener, POLLIN, 0};
    const int count = running < kMostConnections ? 1 : 0;
    return poll(&waiting, static_cast<nfds_t>(count), kReapMilliseconds) == 1;
}

[[noreturn]] void ServeConnections(const WebPage& page) {
    const std::string web_server = FindProgram(kWebServer);
    int running = 0;
    for (;;) {
        while (running > 0 && ReapOne()) {
            --running;
        }
        if (!AwaitConnection(page.listener.get(), running)) {
            continue;
        }
        const velk::UniqueFd connection(
            accept4(page.listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
        const pid_t child = connection.get() == -1 ? -1 : fork();
        if (child == 0) {
            RunWebServer(page, web_server, connection.get());
        }
        running += child > 0 ? 1 : 0;
    }
}

// The terminal is the command's.
void LeaveTerminal() {
    (void)prctl(PR_SET_NAME, "velk-web-port");
    (void)setsid();
    const velk::UniqueFd nowhere(open("/dev/null", O_RDWR | O_CLOEXEC));
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        (void)dup2(nowhere.get(), fd);
    }
}

}  // namespace

void OpenWebPort(WebPage& page, uint16_t port) {
    CheckInstalled(page);
    page.listener = velk::UniqueFd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    (void)setsockopt(page.listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(page.listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
            -1 ||
        listen(page.listener.get(), kQueue) == -1) {
        Fail("--web: cannot listen on port " + std::to_string(port), errno,
             "give another port, or none for a free one");
    }
    page.port = PortOf(page.listener.get());
}

// A machine with the package velk-web has this folder. The device sees it, but cannot write it, and
// the machine's users must not log in on the device.
void HideUsersOfMachine() {
    std::error_code unseen;
    if (fs::exists(kUsersFolder, unseen)) {
        MountTmpfs(kUsersFolder, 0755);
    }
}

void StartWebPage(WebPage page) {
    HideUsersOfMachine();
    const std::string password = NewPassword();
    SetPassword(page, password);
    const pid_t server = fork();
    if (server == -1) {
        Fail("cannot start a process", errno);
    }
    if (server == 0) {
        LeaveTerminal();
        ServeConnections(page);
    }
    PrintMessage("settings page: http://127.0.0.1:" + std::to_string(page.port) + "/");
    PrintDetail(std::string("user ") + kUser);
    PrintDetail("password " + password);
}

}  // namespace sandbox
