// log.h - what the daemon has to say while it runs. Keys are never part of it.
#ifndef SANDBOX_WLAND_LOG_H_
#define SANDBOX_WLAND_LOG_H_

#include <string>

namespace wland {

// From now on lines go to syslog(3); until then they go to standard error.
void LogToSyslog();

// From now on LogDetail() says something.
void LogDetails();

void Log(const std::string& line);
void LogDetail(const std::string& line);

}  // namespace wland

#endif  // SANDBOX_WLAND_LOG_H_
