// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// fuzz_device.cpp - the base of every fuzz target.
#include "fuzz/kit/fuzz_device.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>

#include "fuzz/kit/fuzzer_options.h"
#include "fuzz/kit/shell_lines.h"
#include "sandbox/device/device.h"

namespace fuzz {
namespace {

// Includes the listing's own descriptor each time.
std::ptrdiff_t CountDescriptors() {
    const testkit::Unrecorded unrecorded;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
}

// Empties the recorder, which the fake shell uses. Returns the number of open descriptors.
std::ptrdiff_t Begin() {
    testkit::LibcRecorder::Get().Reset();
    return CountDescriptors();
}

bool IsDocumented(int result) {
    switch (result) {
        case LIB_VELK_SUCCESS:
        case LIB_VELK_FAILURE:
        case LIB_VELK_LOCKED:
        case LIB_VELK_INVALID_PARAMETER:
        case LIB_VELK_NO_ADAPTER:
        case LIB_VELK_WIRED_LINKED:
            return true;
        default:
            return false;
    }
}

}  // namespace

Turn::Turn() : descriptors_(Begin()) {
}

Turn::~Turn() {
    Check(CountDescriptors() == descriptors_, "every descriptor is closed");
    for (const std::string& line : testkit::LibcRecorder::Get().Commands()) {
        Check(IsKnownLine(line, texts_), "the shell line is one of the library's: " + line);
    }
}

int Turn::Execute(const _velk_request& request) {
    response = testkit::DirtyResponse();
    const _velk_request before = request;
    texts_.emplace_back(request.data, strnlen(request.data, sizeof(request.data)));
    const int result = execute_velk_command(&request, &response);
    Check(IsDocumented(result), "the result is a documented one");
    Check(memcmp(&before, &request, sizeof(before)) == 0, "the request is only read");
    Check(response.command_type == request.command_type, "the response has the type");
    Check(response.command_id == request.command_id, "the response has the id");
    Check(response.interface[VELK_INTERFACE_SIZE - 1] == '\0', "the response's name ends");
    Check(strncmp(response.interface, request.interface, VELK_INTERFACE_SIZE - 1) == 0,
          "the response has the name");
    return result;
}

int Turn::Execute(uint32_t type, uint32_t id, std::string_view interface, std::string_view data) {
    return Execute(testkit::MakeRequest(type, id, interface, data));
}

}  // namespace fuzz

// Called by the fuzzer, once and first.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz::AddFuzzerOptions(argc, argv);
    sandbox::DeviceOptions options;
    options.bind_folders = {VELK_SOURCE_DIR, VELK_BINARY_DIR, std::filesystem::current_path()};
    options.protect_machine = false;  // corpora and findings go to real folders
    try {
        sandbox::EnterDevice(options);
    } catch (const std::exception& error) {
        fprintf(stderr, "skipped, no private device: %s\n", error.what());
        exit(fuzz::kSkipped);  // the targets write to the library's real paths
    }
    return 0;
}

// The fuzzer's runtime brings operator new along, the recorder operator delete: they may meet.
// Every edit takes blocks of 64 KB; few of them are kept from being used again.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "alloc_dealloc_mismatch=0:quarantine_size_mb=8:malloc_context_size=3:"
           "max_allocation_size_mb=1024";
}
