// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// replay_main.cpp - runs a target on every file of a corpus and on a fixed number of changes of
// each, without a fuzzer: for the compilers that have none. REPLAY CORPUS_FOLDER [CHANGES]. An
// input that breaks something is left in the build folder as crash-TARGET-replay.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/device_test.h"
#include "support/dice.h"

extern "C" {
int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size, unsigned seed);

// The fuzzer's own part of the mutator: here it adds a newline and counts one byte up.
size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size) {
    if (size < max_size) {
        data[size++] = '\n';
    }
    data[size / 2] = static_cast<uint8_t>(data[size / 2] + 1);
    return size;
}
}

namespace {

constexpr unsigned kUsualChanges = 40;
constexpr size_t kMaxSize = 4096;

// Keeps the input that runs: when the process ends in it, the file is still there.
class InputKeeper {
  public:
    explicit InputKeeper(std::string path) : path_(std::move(path)) {}

    void Keep(const std::vector<uint8_t>& input) const {
        testkit::WriteFile(path_, std::string(input.begin(), input.end()));
    }
    void Forget() const { std::filesystem::remove(path_); }

  private:
    const std::string path_;
};

// On a copy of just the bytes, so that a read beyond them shows.
void Run(const InputKeeper& keeper, const std::vector<uint8_t>& input) {
    keeper.Keep(input);
    const std::vector<uint8_t> copy(input);
    (void)LLVMFuzzerTestOneInput(copy.data(), copy.size());
    keeper.Forget();
}

void RunWithChanges(const InputKeeper& keeper, const std::string& text, unsigned changes) {
    std::vector<uint8_t> input(text.begin(), text.end());
    Run(keeper, input);
    for (unsigned seed = 0; seed < changes; ++seed) {
        const size_t size = std::min(input.size(), kMaxSize);
        input.resize(kMaxSize);
        input.resize(LLVMFuzzerCustomMutator(input.data(), size, kMaxSize, seed));
        Run(keeper, input);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        fprintf(stderr, "usage: %s CORPUS_FOLDER [CHANGES]\n", argv[0]);
        return 2;
    }
    const unsigned changes = argc == 3 ? static_cast<unsigned>(std::stoul(argv[2])) : kUsualChanges;
    LLVMFuzzerInitialize(&argc, &argv);
    const std::filesystem::path corpus = argv[1];
    const InputKeeper keeper(VELK_BINARY_DIR "/crash-" + corpus.filename().string() + "-replay");
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
        files.push_back(entry.path());
    }
    std::ranges::sort(files);
    for (const std::string& file : files) {
        printf("%s\n", file.c_str());
        fflush(stdout);  // the last name printed is that of the failing input, or of the input that
                         // was changed
        RunWithChanges(keeper, testkit::ReadFile(file), changes);
    }
    return files.empty() ? 1 : 0;
}
