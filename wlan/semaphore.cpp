// semaphore.cpp - the semaphore that tells the wireless daemon when it may reply.
#include <cerrno>

#include <fcntl.h>
#include <semaphore.h>

#include "frame/log.h"
#include "velk.h"

namespace velk {
namespace {

constexpr char kName[] = "/WlanAplRecvSem";
constexpr mode_t kMode = 0666;

// A query goes on without a semaphore; the missing handle fails here instead of crashing.
int Close(const sem_t* sem) {
    if (sem == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return sem_close(const_cast<sem_t*>(sem));
}

}  // namespace
}  // namespace velk

sem_t* CreatSemaphore() {
    sem_t* sem = sem_open(velk::kName, O_RDWR | O_CREAT, velk::kMode, 0U);
    if (sem == SEM_FAILED) {
        velk::LogErrno("CreatSemaphore sem_open:errno=%d:%s", errno);
        return nullptr;
    }
    return sem;
}

void DeleteSemaphore(const sem_t* sem) {
    if (velk::Close(sem) == -1) {
        velk::LogErrno("DeleteSemaphore sem_close errno=%d:%s", errno);
    }
    if (sem_unlink(velk::kName) == -1) {
        velk::LogErrno("DeleteSemaphore sem_unlink errno=%d:%s", errno);
    }
}
