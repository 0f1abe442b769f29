// counted_calls.cpp - makes one request as often as it is told, for counters to look at.
//
// counted_calls COUNT get|set ID INTERFACE [DATA]
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "velk.h"

int main(int argc, char** argv) {
    if (argc < 5) {
        return 2;
    }
    _velk_request request{};
    request.command_type = std::string_view(argv[2]) == "set" ? VELK_SET : VELK_GET;
    request.command_id = static_cast<uint32_t>(atoi(argv[3]));
    strncpy(request.interface, argv[4], sizeof(request.interface) - 1);
    if (argc > 5) {
        strncpy(request.data, argv[5], sizeof(request.data) - 1);
    }
    _velk_request response;
    for (int count = atoi(argv[1]); count > 0; --count) {
        (void)execute_velk_command(&request, &response);  // what it says, other tests hold
    }
    return 0;
}
