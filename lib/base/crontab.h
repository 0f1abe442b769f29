// crontab.h - the file in which the device's timed programs stand.
#ifndef VELK_BASE_CRONTAB_H_
#define VELK_BASE_CRONTAB_H_

namespace velk {

constexpr char kCrontab[] = "/var/cron/tabs/root";

}  // namespace velk

#endif  // VELK_BASE_CRONTAB_H_
