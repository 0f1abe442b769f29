// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// library_observer.cpp - sees the steps of the library outside its own memory, and may replace
// them.
#include "velkctl/call/library_observer.h"

namespace velkctl {
namespace {

LibraryObserver* current = nullptr;

}  // namespace

LibraryObserver* CurrentObserver() {
    return current;
}

void SetObserver(LibraryObserver* observer) {
    current = observer;
}

}  // namespace velkctl
