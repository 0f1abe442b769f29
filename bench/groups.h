// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// groups.h - the groups of benchmarks, one function each.
#ifndef BENCH_GROUPS_H_
#define BENCH_GROUPS_H_

namespace bench {

void AddGets();
void AddSets();
void AddBusyDevice();
void AddLock();
void AddWireless();
void AddGrowth();
void AddPeers();
void AddProcesses();
void AddLoading();

}  // namespace bench

#endif  // BENCH_GROUPS_H_
