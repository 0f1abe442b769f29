// age.h - what there is to say about a file that should not be there.
#ifndef VELKCTL_DOCTOR_AGE_H_
#define VELKCTL_DOCTOR_AGE_H_

#include <string>

#include <sys/stat.h>

namespace velkctl {

// "5 seconds", "3 minutes", "2 days"
std::string InWords(long long seconds);

// How long ago the file was changed.
std::string AgeOf(const struct stat& facts);

// "a symbolic link", "a folder"
std::string KindOf(mode_t mode);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_AGE_H_
