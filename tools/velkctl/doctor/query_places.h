// query_places.h - where a query meets the wireless daemon: two sockets and a semaphore.
#ifndef VELKCTL_DOCTOR_QUERY_PLACES_H_
#define VELKCTL_DOCTOR_QUERY_PLACES_H_

#include <string>

#include <sys/stat.h>

#include "velkctl/places.h"

namespace velkctl {

inline constexpr char kSemaphore[] = "/dev/shm/sem.WlanAplRecvSem";

// Says whether a process has this path bound.
bool IsBound(const std::string& path);

// Says whether what stands in the semaphore's place can be one. A file that is too short ends every
// program that uses it (SIGBUS).
bool IsSemaphore(const struct stat& facts);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_QUERY_PLACES_H_
