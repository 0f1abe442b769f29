// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_call.cpp - runs a command of the library.
#include "velkctl/call/library_call.h"

#include <algorithm>
#include <iterator>

#include "velk.h"
#include "velkctl/call/library_observer.h"

namespace velkctl {

Answer CallLibrary(const Command& command, const Data& data) {
    if (LibraryObserver* observer = CurrentObserver(); observer != nullptr) {
        observer->Begin(command);
    }
    _velk_request request{};
    (void)command.interface.copy(request.interface, sizeof(request.interface));
    request.command_type = command.type;
    request.command_id = command.id;
    std::copy(data.begin(), data.end(), std::begin(request.data));

    _velk_request response{};
    Answer answer{execute_velk_command(&request, &response)};
    std::copy(std::begin(response.data), std::end(response.data), answer.data.begin());
    return answer;
}

}  // namespace velkctl
