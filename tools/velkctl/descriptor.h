// descriptor.h - the one owner of a file descriptor.
#ifndef VELKCTL_DESCRIPTOR_H_
#define VELKCTL_DESCRIPTOR_H_

#include <unistd.h>

namespace velkctl {

class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    ~Descriptor() { Reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool is_open() const { return fd_ != -1; }
    int get() const { return fd_; }

    // Closes what it holds, then holds `fd`.
    void Reset(int fd = -1) {
        if (fd_ != -1) {
            (void)close(fd_);
        }
        fd_ = fd;
    }

  private:
    int fd_;
};

}  // namespace velkctl

#endif  // VELKCTL_DESCRIPTOR_H_
