// result_log.cpp - what the time client said when it ran last.
#include <string_view>

#include "lib/base/line_reader.h"
#include "lib/base/paths.h"
#include "lib/base/shell.h"
#include "velk/ntp.h"
#include "velk/request.h"

namespace velk {
namespace {

// The client's lines begin with a time stamp. What stands further in front than this is not its
// word about a server.
constexpr size_t kFirstPlace = 11;

bool TellsOfServer(std::string_view line) {
    return line.find("time server", kFirstPlace) != std::string_view::npos;
}

}  // namespace
}  // namespace velk

using namespace velk;

int GetNtpCommunicate(const _velk_request& /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    LineReader log(kNtpLog);
    if (!log.is_open()) {
        out[0] = VELK_NTP_NO_RESULT;
        return LIB_VELK_SUCCESS;
    }
    out[0] = VELK_NTP_NOT_REACHED;
    for (std::string_view line; log.ReadLine(line);) {  // the last line decides
        out[0] = TellsOfServer(line) ? VELK_NTP_REACHED : VELK_NTP_NOT_REACHED;
    }
    return LIB_VELK_SUCCESS;
}

void DeleteNtpLog() {
    (void)CommandLine("rm %s", kNtpLog).Run();
}
