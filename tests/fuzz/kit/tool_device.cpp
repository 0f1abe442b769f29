// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_device.cpp - the base of the targets that run velkctl, velk-web and the simulated device's
// readers.
#include "fuzz/kit/tool_device.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <utility>

#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "fuzz/kit/fuzzer_options.h"
#include "fuzz/kit/started_programs.h"
#include "sandbox/device/device.h"
#include "sandbox/device/namespaces.h"
#include "sandbox/device/sample_files.h"
#include "sandbox/process/bound_child.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace fuzz {
namespace {

namespace fs = std::filesystem;
using testkit::Unrecorded;

constexpr pid_t kWorker = 2;  // after the first process of the namespace

// Folders that hold files of the device. Those below them are listed by themselves.
const std::vector<std::string> kFolders = {"/dev/shm",
                                           "/etc/network",
                                           "/proc/bus/usb",
                                           "/run/velk-web",
                                           "/run/velk-web/jobs",
                                           "/run/velk-web/sessions",
                                           "/tmp",
                                           "/usr/local/share/apps/wlan",
                                           "/usr/local/share/etc/snmp",
                                           "/var/cron/tabs",
                                           "/var/lib/dhcp",
                                           "/var/libvelk",
                                           "/var/libvelk/journal",
                                           "/var/log/syslog",
                                           "/var/tmp"};

const std::vector<std::string> kFiles = {testkit::kClientScript, testkit::kDhcpConfigFile,
                                         testkit::kExitHooks, testkit::kResolverFile,
                                         "/etc/velk/web-users"};

// Read once: the folder they come from does not change.
const std::vector<sandbox::SampleFile>& Samples() {
    static const auto samples = sandbox::ReadSamples(VELK_SOURCE_DIR "/sandbox/data/rootfs");
    return samples;
}

// A folder has no text. Its mode says who may write in it.
void AddFile(const std::string& path, DeviceFiles& files) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) != 0) {
        return;
    }
    std::string text = std::to_string(facts.st_mode) + " ";
    if (S_ISREG(facts.st_mode)) {
        text.append(testkit::ReadFile(path));
    }
    files[path] = std::move(text);
}

// The files that a folder has, without the folders in it.
std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> paths;
    std::error_code missing;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, missing)) {
        if (!entry.is_directory(missing) || entry.is_symlink(missing)) {
            paths.push_back(entry.path());
        }
    }
    return paths;
}

std::vector<std::string> AllPaths() {
    std::vector<std::string> paths = kFiles;
    for (const std::string& folder : kFolders) {
        std::ranges::move(FilesIn(folder), std::back_inserter(paths));
    }
    return paths;
}

// A file that is as it should be keeps its time.
void PlaceFile(const sandbox::SampleFile& sample) {
    if (sample.kind == sandbox::FileKind::kFile && testkit::ReadFile(sample.path) != sample.text) {
        testkit::WriteFile(sample.path, sample.text);
    }
}

bool IsSample(const std::string& path) {
    return std::ranges::any_of(Samples(), [&](const auto& sample) { return sample.path == path; });
}

void EnterDevice() {
    sandbox::DeviceOptions options;
    options.rootfs = VELK_SOURCE_DIR "/sandbox/data/rootfs";
    options.files = {{"/etc/velk", 0755, sandbox::FileKind::kFolder, ""},
                     sandbox::MakeSample("/etc/velk/web-users", "")};
    options.bind_folders = {VELK_SOURCE_DIR, VELK_BINARY_DIR};
    options.writable = {VELK_BINARY_DIR};  // corpora and findings
    options.own_processes = true;
    sandbox::EnterDevice(options);
}

// The processes of the namespace: its first one, this one, perhaps the fuzzer's own that finds the
// names of functions, and those that the target has started.
size_t CountProcesses() {
    size_t count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        count += name.find_first_not_of("0123456789") == std::string::npos ? 1 : 0;
    }
    return count;
}

// The processes at the beginning of the turn.
size_t& CountBefore() {
    static size_t count = 0;
    return count;
}

bool AreProcessesLeft() {
    return CountProcesses() > CountBefore();
}

// The first process of the namespace: awaits those that have lost their parents. Ends with the
// worker.
[[noreturn]] void BecomeFirstProcess(pid_t worker) {
    for (;;) {
        int status = 0;
        const pid_t ended = waitpid(-1, &status, 0);
        if (ended == worker) {
            _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
        }
        if (ended == -1 && errno != EINTR) {
            _exit(1);
        }
    }
}

// The fuzzer itself handles the signals of a person.
void IgnoreStops() {
    (void)signal(SIGINT, SIG_IGN);
    (void)signal(SIGTERM, SIG_IGN);
}

// Returns in the worker alone, a process of a new PID namespace: velkctl sees no process of the
// machine, and can end none.
void BecomeWorker() {
    sandbox::GiveUpPrivileges();
    const pid_t first = sandbox::ForkBoundChild(sandbox::ForkFirstProcess);
    if (first != 0) {
        IgnoreStops();
        _exit(sandbox::WaitForChild(first));
    }
    const pid_t worker = sandbox::ForkBoundChild(fork);
    if (worker != 0) {
        IgnoreStops();
        BecomeFirstProcess(worker);
    }
    Check(getpid() == kWorker, "the worker is in a namespace of its own");
}

}  // namespace

DeviceFiles ReadDeviceFiles() {
    const Unrecorded unrecorded;
    DeviceFiles files;
    for (const std::string& path : AllPaths()) {
        AddFile(path, files);
    }
    return files;
}

void PlaceDevice() {
    const Unrecorded unrecorded;
    std::error_code ignored;
    for (const std::string& path : AllPaths()) {
        if (!IsSample(path)) {
            fs::remove(path, ignored);
        }
    }
    for (const char* folder : {testkit::kJournalFolder, "/run/velk-web"}) {
        fs::remove_all(folder, ignored);
    }
    for (const sandbox::SampleFile& sample : Samples()) {
        PlaceFile(sample);
    }
}

std::vector<std::string> Differences(const DeviceFiles& one, const DeviceFiles& other) {
    std::vector<std::string> paths;
    for (const auto& [path, text] : one) {
        const auto found = other.find(path);
        if (found == other.end() || found->second != text) {
            paths.push_back(path);
        }
    }
    for (const auto& [path, text] : other) {
        if (!one.contains(path)) {
            paths.push_back(path);
        }
    }
    return paths;
}

// A process that has ended stays in the list until it is awaited. Those of the first process are.
void AwaitEnds() {
    const Unrecorded unrecorded;
    constexpr int kTries = 10'000;
    for (int i = 0; i < kTries && AreProcessesLeft(); ++i) {
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        (void)poll(nullptr, 0, 1);  // the other pauses take no time here
    }
}

PrintedTexts::PrintedTexts() {
    Exchange(stdout, output_);
    Exchange(stderr, error_);
}

PrintedTexts::~PrintedTexts() {
    stdout = output_.before;
    stderr = error_.before;
    for (Stream* stream : {&output_, &error_}) {
        (void)fclose(stream->file);  // sets the text for the last time
        free(stream->text);
    }
}

void PrintedTexts::Exchange(FILE*& standard, Stream& stream) {
    stream.file = open_memstream(&stream.text, &stream.size);
    Check(stream.file != nullptr, "there is a stream in memory");
    stream.before = std::exchange(standard, stream.file);
}

std::string PrintedTexts::TextOf(Stream& stream) {
    (void)fflush(stream.file);
    return {stream.text, stream.size};
}

std::string PrintedTexts::output() {
    return TextOf(output_);
}

std::string PrintedTexts::error() {
    return TextOf(error_);
}

namespace {

std::vector<int> BeginTurn() {
    testkit::LibcRecorder::Get().Reset();
    CountBefore() = CountProcesses();
    return testkit::OpenDescriptors();
}

}  // namespace

ToolTurn::ToolTurn() : descriptors_(BeginTurn()) {
    auto& libc = testkit::LibcRecorder::Get();
    libc.NeverWait();
    libc.ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
    libc.ScriptAlways(testkit::Call::kClockNanosleep, testkit::Return(0));
}

ToolTurn::~ToolTurn() {
    const Unrecorded unrecorded;
    AwaitEnds();
    Check(!AreProcessesLeft(), "no process is left");
    Check(testkit::OpenDescriptors() == descriptors_, "every descriptor is closed");
    Check(testkit::IsLockFree(), "the library's lock is free");
}

bool IsPlainText(std::string_view text) {
    return std::ranges::none_of(text, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F;
    });
}

}  // namespace fuzz

// Called by the fuzzer, once and first.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz::AddFuzzerOptions(argc, argv);
    (void)setenv("PATH", "/run/no-tools", 1);
    (void)setenv("TERM", "dumb", 1);
    try {
        fuzz::BecomeWorker();
        fuzz::EnterDevice();
    } catch (const std::exception& error) {
        fprintf(stderr, "skipped, no private device: %s\n", error.what());
        exit(fuzz::kSkipped);
    }
    fuzz::RefuseStarts();
    return 0;
}

extern "C" [[gnu::visibility("default")]] const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0:quarantine_size_mb=8:malloc_context_size=3:"
           "max_allocation_size_mb=1024";
}
