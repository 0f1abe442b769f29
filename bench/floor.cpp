// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// floor.cpp - minimal implementations of tasks, written by hand.
#include "bench/floor.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr size_t kBlockSize = 64 * 1024;
char block[kBlockSize];

void CopyValue(const char* from, const char* end, char* out) {
    const void* newline = memchr(from, '\n', static_cast<size_t>(end - from));
    const char* stop = newline == nullptr ? end : static_cast<const char*>(newline);
    memcpy(out, from, static_cast<size_t>(stop - from));
    out[stop - from] = '\0';
}

const char* Find(const char* from, const char* end, std::string_view text) {
    const void* found = memmem(from, static_cast<size_t>(end - from), text.data(), text.size());
    if (found == nullptr) {
        GiveUp("no " + std::string(text));
    }
    return static_cast<const char*>(found) + text.size();
}

int Open(const char* path, int flags) {
    const int fd = open(path, flags | O_CLOEXEC, 0666);
    if (fd == -1) {
        GiveUp(path);
    }
    return fd;
}

// Reads the begin of a file into the block.
ssize_t ReadByHand(const char* path) {
    const int fd = Open(path, O_RDONLY);
    const ssize_t count = read(fd, block, sizeof(block));
    close(fd);
    return count;
}

bool StartsWith(const char* line, const char* stop, std::string_view start) {
    return static_cast<size_t>(stop - line) >= start.size() &&
           memcmp(line, start.data(), start.size()) == 0;
}

}  // namespace

void GiveUp(const std::string& message) {
    fprintf(stderr, "velk_bench: failed: %s\n", message.c_str());
    _exit(1);
}

void FindByHand(const char* path, std::string_view start, std::string_view key, char* out) {
    ssize_t count = ReadByHand(path);
    for (int tries = 0; count == 0 && tries < 50; ++tries) {
        usleep(1000);
        count = ReadByHand(path);
    }
    const char* end = block + (count > 0 ? count : 0);
    CopyValue(Find(Find(block, end, start), end, key), end, out);
}

void CutByHand(const char* path, std::string_view start, std::string_view key, char* out) {
    const int fd = Open(path, O_RDONLY);
    size_t held = 0;
    bool inside = false;
    for (;;) {
        const ssize_t count = read(fd, block + held, sizeof(block) - held);
        if (count <= 0) {
            GiveUp("no " + std::string(start));
        }
        const char* line = block;
        const char* end = block + held + count;
        const void* newline;
        while ((newline = memchr(line, '\n', static_cast<size_t>(end - line))) != nullptr) {
            const char* stop = static_cast<const char*>(newline);
            if (!inside) {
                inside = StartsWith(line, stop, start);
            } else if (const void* found =
                           memmem(line, static_cast<size_t>(stop - line), key.data(), key.size())) {
                CopyValue(static_cast<const char*>(found) + key.size(), stop, out);
                close(fd);
                return;
            }
            line = stop + 1;
        }
        held = static_cast<size_t>(end - line);
        memmove(block, line, held);
    }
}

void CopyByHand(const char* from, const char* to) {
    const int source = Open(from, O_RDONLY);
    const int target = Open(to, O_WRONLY | O_CREAT | O_EXCL);
    ssize_t count;
    while ((count = read(source, block, sizeof(block))) > 0) {
        if (write(target, block, static_cast<size_t>(count)) != count) {
            GiveUp(to);
        }
    }
    close(source);
    close(target);
}

void WriteByHand(const char* path, std::string_view text) {
    const int fd = Open(path, O_WRONLY | O_CREAT | O_TRUNC);
    if (write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        GiveUp(path);
    }
    close(fd);
}

void RunLine(const std::string& line) {
    if (system(line.c_str()) != 0) {
        GiveUp(line);
    }
}

void EditByHand(const std::string& path) {
    const std::string copy = velk::kEditFolder + path.substr(path.rfind('/'));
    CopyByHand(path.c_str(), copy.c_str());
    RunLine("cat " + copy + " > " + path);
    RunLine("rm " + copy);
}

void LockByHand(const char* path) {
    const int fd = Open(path, O_RDWR | O_CREAT);
    if (flock(fd, LOCK_EX | LOCK_NB) != 0 || flock(fd, LOCK_UN) != 0) {
        GiveUp(path);
    }
    close(fd);
}

}  // namespace bench
