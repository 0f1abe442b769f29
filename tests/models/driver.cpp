// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// driver.cpp - models_driver LIBRARY runs requests of the library on files in a file system of its
// own, without starting a program. A batch of pairs of files and request is read from standard
// input, and the outcomes are written to standard output, until the input ends.
//
// The library loads this program's system(3), syslog(3) and waits instead of those of libc: shell
// lines and log lines are recorded, and a wait only moves the clock. tests/models/driver.py
// describes the form of the data.
#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <semaphore.h>
#include <sys/mount.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include "velk.h"

namespace {

constexpr int kSkipped = 77;
// A call takes less than a millisecond. SIGALRM ends one that hangs.
constexpr unsigned kSeconds = 10;
constexpr long kNanoseconds = 1'000'000'000;

// The folders of the device. Files are looked for in them alone.
constexpr const char* kFolders[] = {"/dev",
                                    "/dev/shm",
                                    "/etc",
                                    "/etc/network",
                                    "/proc",
                                    "/proc/bus",
                                    "/proc/bus/usb",
                                    "/proc/net",
                                    "/sbin",
                                    "/tmp",
                                    "/usr",
                                    "/usr/local",
                                    "/usr/local/share",
                                    "/usr/local/share/apps",
                                    "/usr/local/share/apps/wlan",
                                    "/var",
                                    "/var/cron",
                                    "/var/cron/tabs",
                                    "/var/libvelk",
                                    "/var/log",
                                    "/var/log/syslog",
                                    "/var/tmp"};

enum class Event : uint8_t { kCommand = 1, kLog = 2, kSleep = 3, kMessage = 4 };
enum class Kind : uint8_t { kFile = 1, kFolder = 2 };

enum class Daemon : uint8_t { kNone, kAnswers, kSilent };

constexpr char kDaemonPath[] = "/tmp/WlanAplToWlanSock";
constexpr char kReplyPath[] = "/tmp/WlanAplFromWlanSock";
constexpr size_t kMessageSize = 240;
constexpr short kReport = 3;  // asks for the configuration
constexpr short kState = 4;   // asks for the state

// The present pair.
struct Scene {
    std::map<std::string, std::vector<std::string>, std::less<>>
        outputs;  // one for each run of a tool
    std::map<std::string, size_t, std::less<>> runs;
    std::map<std::string, ino_t> files;
    int cut = -1;  // the bytes that cat(1) copies; all if negative
    Daemon daemon = Daemon::kNone;
    std::string configuration;  // the bodies of the daemon's replies
    std::string state;
    std::string events;
    uint32_t event_count = 0;
    int64_t waited = 0;  // nanoseconds
};
Scene scene;
bool is_running = false;
int daemon_socket = -1;

[[noreturn]] void Fail(const char* step) {
    (void)fprintf(stderr, "models_driver: %s: %s\n", step, strerror(errno));
    _exit(1);
}

template <typename Number>
void Append(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

void AppendText(std::string& bytes, std::string_view text) {
    Append(bytes, static_cast<uint32_t>(text.size()));
    bytes += text;
}

void Record(Event event, std::string_view text) {
    Append(scene.events, static_cast<uint8_t>(event));
    AppendText(scene.events, text);
    scene.event_count++;
}

class Input {
  public:
    explicit Input(std::string_view bytes) : rest_(bytes) {}

    template <typename Number>
    Number Take() {
        Number number;
        memcpy(&number, Bytes(sizeof(number)).data(), sizeof(number));
        return number;
    }
    std::string_view Text() { return Bytes(Take<uint32_t>()); }
    std::string_view Bytes(size_t count) {
        if (count > rest_.size()) {
            errno = EPROTO;
            Fail("input");
        }
        const std::string_view bytes = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return bytes;
    }

  private:
    std::string_view rest_;
};

// ---- Files -------------------------------------------------------------------------------------

bool ReadAll(const char* path, std::string& text) {
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    char block[16384];
    ssize_t count;
    while ((count = read(fd, block, sizeof(block))) > 0) {
        text.append(block, static_cast<size_t>(count));
    }
    close(fd);
    return count == 0;
}

bool WriteAll(const char* path, std::string_view text, mode_t mode) {
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0) {
        return false;
    }
    const ssize_t count = write(fd, text.data(), text.size());
    close(fd);
    return count == static_cast<ssize_t>(text.size());
}

// The open folders of the device.
std::vector<DIR*> folders;
// The files after a pair; the next one begins without them.
std::vector<std::pair<std::string, Kind>> found;

void FindFiles() {
    found.clear();
    for (size_t i = 0; i < folders.size(); i++) {
        rewinddir(folders[i]);
        while (const dirent* entry = readdir(folders[i])) {
            const std::string path = std::string(kFolders[i]) + "/" + entry->d_name;
            const bool is_own =
                std::find(std::begin(kFolders), std::end(kFolders), path) != std::end(kFolders);
            if (entry->d_name[0] != '.' && !is_own && path != kDaemonPath) {
                found.emplace_back(path, entry->d_type == DT_DIR ? Kind::kFolder : Kind::kFile);
            }
        }
    }
}

void RemoveFiles() {
    for (const auto& [path, kind] : found) {
        if (kind == Kind::kFolder) {
            (void)unlink((path + "/full").c_str());
            (void)rmdir(path.c_str());
        } else if (unlink(path.c_str()) != 0) {
            Fail(path.c_str());
        }
    }
}

// A folder has a file in it, so that it cannot be removed as an empty one can.
void MakeFile(const std::string& path, Kind kind, mode_t mode, std::string_view text) {
    if (kind == Kind::kFolder) {
        if (mkdir(path.c_str(), 0755) != 0 || !WriteAll((path + "/full").c_str(), "", 0644)) {
            Fail(path.c_str());
        }
        return;
    }
    struct stat status {};
    if (!WriteAll(path.c_str(), text, 0600) || chmod(path.c_str(), mode) != 0 ||
        stat(path.c_str(), &status) != 0) {
        Fail(path.c_str());
    }
    scene.files[path] = status.st_ino;
}

void AppendFiles(std::string& answer) {
    FindFiles();
    Append(answer, static_cast<uint32_t>(found.size()));
    for (const auto& [path, kind] : found) {
        struct stat status {};
        std::string text;
        if (stat(path.c_str(), &status) != 0 ||
            (kind == Kind::kFile && !ReadAll(path.c_str(), text))) {
            Fail(path.c_str());
        }
        const auto made = scene.files.find(path);
        AppendText(answer, path);
        Append(answer, static_cast<uint8_t>(kind));
        Append(answer, static_cast<uint16_t>(kind == Kind::kFile ? status.st_mode & 07777 : 0));
        Append(answer,
               static_cast<uint8_t>(made != scene.files.end() && made->second == status.st_ino));
        AppendText(answer, text);
    }
}

// ---- Shell lines -------------------------------------------------------------------------------

// The n-th run of a tool has the n-th output; later runs have the last one.
std::string Output(const std::string& command) {
    const auto outputs = scene.outputs.find(command);
    if (outputs == scene.outputs.end() || outputs->second.empty()) {
        return "";
    }
    const size_t run = scene.runs[command]++;
    return outputs->second[std::min(run, outputs->second.size() - 1)];
}

// "grep "TEXT" FILE": the lines of the file with the text.
std::string Grep(const std::string& command) {
    const size_t quote = command.find('"', 6);
    const std::string pattern = command.substr(6, quote - 6);
    std::string text;
    std::string matches;
    (void)ReadAll(command.c_str() + quote + 2, text);
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = std::string_view(text).substr(begin, end - begin);
        if (line.find(pattern) != std::string_view::npos) {
            matches.append(line).push_back('\n');
        }
        begin = end + 1;
    }
    return matches;
}

std::string Copy(const char* source) {
    std::string text;
    (void)ReadAll(source, text);
    return scene.cut < 0 ? text : text.substr(0, static_cast<size_t>(scene.cut));
}

void RunLine(const std::string& line) {
    if (line.starts_with("rm ")) {
        (void)unlink(line.c_str() + (line.starts_with("rm -f ") ? 6 : 3));
        return;
    }
    const size_t arrow = line.find(" > /");
    if (arrow == std::string::npos || line.starts_with("sudo sed ") || line.ends_with("2>&1")) {
        return;
    }
    const std::string command = line.substr(0, arrow);
    // The shell opens the target before the command runs.
    const char* target = line.c_str() + arrow + 3;
    if (!WriteAll(target, "", 0666)) {
        return;
    }
    const std::string text = command.starts_with("cat ")      ? Copy(command.c_str() + 4)
                             : command.starts_with("grep \"") ? Grep(command)
                                                              : Output(command);
    (void)WriteAll(target, text, 0666);
}

// ---- The wireless daemon -----------------------------------------------------------------------

template <size_t kSize>
sockaddr_un Address(const char (&path)[kSize]) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path, kSize);
    return address;
}

void StartDaemon() {
    if (daemon_socket >= 0) {
        close(daemon_socket);
        (void)unlink(kDaemonPath);
        daemon_socket = -1;
    }
    if (scene.daemon == Daemon::kNone) {
        return;
    }
    const sockaddr_un address = Address(kDaemonPath);
    daemon_socket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (bind(daemon_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        Fail(kDaemonPath);
    }
}

void Reply(const std::string& body) {
    const std::string message = std::string(kMessageSize - sizeof(UMsgData), '\0') + body;
    const sockaddr_un address = Address(kReplyPath);
    (void)sendto(daemon_socket, message.data(), message.size(), MSG_DONTWAIT,
                 reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

// Records the messages that have come, and answers the queries.
void ServeDaemon() {
    char message[2 * kMessageSize];
    ssize_t size;
    while (daemon_socket >= 0 &&
           (size = recv(daemon_socket, message, sizeof(message), MSG_DONTWAIT)) >= 0) {
        Record(Event::kMessage, {message, static_cast<size_t>(size)});
        short type;
        memcpy(&type, message, sizeof(type));
        if (scene.daemon == Daemon::kAnswers && (type == kReport || type == kState)) {
            Reply(type == kReport ? scene.configuration : scene.state);
        }
    }
}

// ---- Batches -----------------------------------------------------------------------------------

using Execute = int (*)(const _velk_request*, _velk_request*);

void ReadScene(Input& input) {
    scene = Scene{};
    scene.cut = input.Take<int32_t>();
    for (auto count = input.Take<uint32_t>(); count > 0; count--) {
        const std::string path(input.Text());
        const auto kind = static_cast<Kind>(input.Take<uint8_t>());
        const mode_t mode = input.Take<uint16_t>();
        MakeFile(path, kind, mode, input.Text());
    }
    for (auto count = input.Take<uint32_t>(); count > 0; count--) {
        std::vector<std::string>& outputs = scene.outputs[std::string(input.Text())];
        for (auto runs = input.Take<uint32_t>(); runs > 0; runs--) {
            outputs.emplace_back(input.Text());
        }
    }
    scene.daemon = static_cast<Daemon>(input.Take<uint8_t>());
    scene.configuration = input.Text();
    scene.state = input.Text();
    StartDaemon();
}

void RunPair(Execute execute, Input& input, std::string& answers) {
    _velk_request request;
    memcpy(&request, input.Bytes(sizeof(request)).data(), sizeof(request));
    RemoveFiles();
    ReadScene(input);
    _velk_request response;
    memset(&response, 0xA5, sizeof(response));  // the library clears it
    is_running = true;
    alarm(kSeconds);
    const int result = execute(&request, &response);
    alarm(0);
    is_running = false;
    ServeDaemon();
    Append(answers, static_cast<int32_t>(result));
    answers.append(reinterpret_cast<const char*>(&response), sizeof(response));
    Append(answers, scene.event_count);
    answers += scene.events;
    AppendFiles(answers);
}

bool ReadBatch(std::string& batch) {
    uint32_t size;
    if (fread(&size, sizeof(size), 1, stdin) != 1) {
        return false;
    }
    batch.resize(size);
    return fread(batch.data(), 1, size, stdin) == size;
}

void RunBatches(Execute execute) {
    for (std::string batch; ReadBatch(batch);) {
        Input input(batch);
        std::string answers;
        for (auto count = input.Take<uint32_t>(); count > 0; count--) {
            RunPair(execute, input, answers);
        }
        const auto size = static_cast<uint32_t>(answers.size());
        if (fwrite(&size, sizeof(size), 1, stdout) != 1 ||
            fwrite(answers.data(), 1, size, stdout) != size || fflush(stdout) != 0) {
            Fail("output");
        }
    }
}

void WriteText(const char* path, const std::string& text) {
    const int fd = open(path, O_WRONLY | O_CLOEXEC);
    if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        Fail(path);
    }
    close(fd);
}

// Everything below the root is a new, empty file system that no other program sees.
void EnterDevice() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    const int new_user = user == 0 ? 0 : CLONE_NEWUSER;
    if (unshare(new_user | CLONE_NEWNS | CLONE_NEWNET) != 0) {
        (void)fprintf(stderr, "models_driver: no private namespaces: %s\n", strerror(errno));
        _exit(kSkipped);
    }
    if (new_user != 0) {
        WriteText("/proc/self/setgroups", "deny");
        WriteText("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
        WriteText("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    }
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", "/tmp", "tmpfs", 0, "mode=755") != 0 || chroot("/tmp") != 0 ||
        chdir("/") != 0) {
        Fail("private file system");
    }
    umask(0);
    for (const char* folder : kFolders) {
        if (mkdir(folder, 0755) != 0) {
            Fail(folder);
        }
    }
    for (const char* folder : kFolders) {
        folders.push_back(opendir(folder));
        if (!folders.back()) {
            Fail(folder);
        }
    }
    umask(022);
}

void Wait(int64_t nanoseconds) {
    scene.waited += nanoseconds;
}

}  // namespace

// ---- The functions of libc that the library gets from here -------------------------------------

extern "C" {

int system(const char* line) {
    Record(Event::kCommand, line);
    RunLine(line);
    return 0;
}

__attribute__((format(printf, 2, 0))) void vsyslog(int /*priority*/, const char* format,
                                                   va_list arguments) {
    const int error = errno;
    char text[1024];
    va_list copy;
    va_copy(copy, arguments);
    errno = error;
    (void)vsnprintf(text, sizeof(text), format, copy);
    va_end(copy);
    Record(Event::kLog, text);
    errno = error;
}

void syslog(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

unsigned sleep(unsigned seconds) {
    Record(Event::kSleep, std::to_string(seconds));
    Wait(int64_t{seconds} * kNanoseconds);
    return 0;
}

int nanosleep(const timespec* time, timespec* /*rest*/) {
    Wait(int64_t{time->tv_sec} * kNanoseconds + time->tv_nsec);
    return 0;
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* /*rest*/) {
    int64_t nanoseconds = int64_t{time->tv_sec} * kNanoseconds + time->tv_nsec;
    if ((flags & TIMER_ABSTIME) != 0) {
        timespec now;
        (void)clock_gettime(clock, &now);
        nanoseconds -= int64_t{now.tv_sec} * kNanoseconds + now.tv_nsec;
    }
    Wait(std::max<int64_t>(nanoseconds, 0));
    return 0;
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (syscall(SYS_clock_gettime, clock, time) != 0) {
        return -1;
    }
    const int64_t nanoseconds = time->tv_nsec + (is_running ? scene.waited : 0);
    time->tv_sec += nanoseconds / kNanoseconds;
    time->tv_nsec = static_cast<long>(nanoseconds % kNanoseconds);
    return 0;
}

// The daemon answers after the library has posted that the reply socket exists.
int sem_post(sem_t* semaphore) noexcept {
    static const auto post = reinterpret_cast<int (*)(sem_t*)>(dlsym(RTLD_NEXT, "sem_post"));
    const int result = post(semaphore);
    ServeDaemon();
    return result;
}

// An answer that has not come at once never comes.
int select(int count, fd_set* to_read, fd_set* to_write, fd_set* failing, timeval* time) {
    const timespec now{};
    if (time) {
        Wait(int64_t{time->tv_sec} * kNanoseconds);
    }
    return pselect(count, to_read, to_write, failing, &now, nullptr);
}

}  // extern "C"

int main(int argc, char** argv) {
    if (argc != 2) {
        (void)fprintf(stderr, "models_driver: usage: models_driver LIBRARY\n");
        return 2;
    }
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_GLOBAL);
    if (!library) {
        (void)fprintf(stderr, "models_driver: %s\n", dlerror());
        return 1;
    }
    if (dlsym(RTLD_DEFAULT, "system") != reinterpret_cast<void*>(&system)) {
        (void)fprintf(stderr, "models_driver: the library would get the system(3) of libc\n");
        return 1;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the form that dlsym(3) asks for
    const auto execute = reinterpret_cast<Execute>(dlsym(library, "execute_velk_command"));
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        unsetenv(variable);
    }
    EnterDevice();
    RunBatches(execute);
    return 0;
}
