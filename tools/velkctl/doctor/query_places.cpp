// query_places.cpp - where a query meets the wireless daemon: two sockets and a semaphore.
#include "velkctl/doctor/query_places.h"

#include <algorithm>

#include <semaphore.h>

#include "velkctl/doctor/text_file.h"

namespace velkctl {

bool IsBound(const std::string& path) {
    const TextFile sockets = ReadTextFile("/proc/net/unix");
    const std::string end = " " + path + "\n";
    return std::ranges::any_of(sockets.lines,
                               [&](const std::string& line) { return line.ends_with(end); });
}

bool IsSemaphore(const struct stat& facts) {
    return S_ISREG(facts.st_mode) && facts.st_size >= static_cast<off_t>(sizeof(sem_t));
}

}  // namespace velkctl
