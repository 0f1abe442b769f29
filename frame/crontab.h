// crontab.h - the file in which the device's timed programs stand.
#ifndef VELK_FRAME_CRONTAB_H_
#define VELK_FRAME_CRONTAB_H_

namespace velk {

constexpr char kCrontab[] = "/var/cron/tabs/root";

}  // namespace velk

#endif  // VELK_FRAME_CRONTAB_H_
