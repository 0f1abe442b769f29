// places.h - where the library and the wireless daemon meet other programs.
#ifndef VELKCTL_PLACES_H_
#define VELKCTL_PLACES_H_

namespace velkctl {

inline constexpr char kLockFile[] = "/var/tmp/vklib_lock";
inline constexpr char kRequestSocket[] = "/tmp/WlanAplToWlanSock";
inline constexpr char kReplySocket[] = "/tmp/WlanAplFromWlanSock";

}  // namespace velkctl

#endif  // VELKCTL_PLACES_H_
