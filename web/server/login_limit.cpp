// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// login_limit.cpp - slows the guessing of passwords down.
#include "web/server/login_limit.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "lib/base/unique_fd.h"
#include "web/server/run_folder.h"

namespace velkweb {
namespace {

constexpr char kFile[] = "failures";
constexpr size_t kLargestFile = size_t{64} * 1024;
constexpr size_t kMostRows = 256;
constexpr int kFreeTries = 5;
constexpr int kFreeTriesOfAll = 30;
constexpr int64_t kLongestWait = int64_t{15} * 60;
constexpr int64_t kLongestWaitOfAll = 15;
constexpr int64_t kForgottenAfter = int64_t{60} * 60;
constexpr int kMostDoublings = 20;

template <typename Number>
std::optional<Number> TakeNumber(std::string_view& line) {
    const size_t end = line.find(' ');
    const std::string_view text = line.substr(0, end);
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    Number number{};
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

Failures& RowOf(std::vector<Failures>& rows, const std::string& address) {
    const auto row = std::ranges::find(rows, address, &Failures::address);
    return row == rows.end() ? rows.emplace_back(Failures{.address = address}) : *row;
}

// Keeps the row of all addresses, and those of the last failures.
void RemoveOldRows(std::vector<Failures>& rows, int64_t now) {
    std::erase_if(rows, [now](const Failures& row) { return now - row.last > kForgottenAfter; });
    while (rows.size() > kMostRows) {
        const auto oldest = std::ranges::min_element(rows, {}, [](const Failures& row) {
            return row.address.empty() ? INT64_MAX : row.last;
        });
        rows.erase(oldest);
    }
}

std::vector<Failures> ReadRows() {
    return ParseFailures(ReadFileText(RunPath(kFile), kLargestFile).value_or(""));
}

void WriteRows(const std::vector<Failures>& rows) {
    if (!ReplaceFile(RunPath(kFile), FailuresText(rows))) {
        throw std::runtime_error("the failed logins cannot be kept");
    }
}

}  // namespace

int64_t WaitAfter(int count, bool is_all) {
    const int beyond = count - (is_all ? kFreeTriesOfAll : kFreeTries);
    if (beyond < 0) {
        return 0;
    }
    const int64_t wait = int64_t{is_all ? 1 : 2} << std::min(beyond, kMostDoublings);
    return std::min(wait, is_all ? kLongestWaitOfAll : kLongestWait);
}

int64_t WaitLeft(const Failures& failures, int64_t now) {
    const int64_t end = failures.last + WaitAfter(failures.count, failures.address.empty());
    return std::max<int64_t>(end - now, 0);
}

std::string FailuresText(const std::vector<Failures>& rows) {
    std::string text;
    for (const Failures& row : rows) {
        text.append(std::to_string(row.count)).append(" ").append(std::to_string(row.last));
        text.append(" ").append(row.address).append("\n");
    }
    return text;
}

std::vector<Failures> ParseFailures(std::string_view text) {
    std::vector<Failures> rows;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        const std::optional<int> count = TakeNumber<int>(line);
        const std::optional<int64_t> last = TakeNumber<int64_t>(line);
        if (count && last) {
            rows.push_back({std::string(line), *count, *last});
        }
    }
    return rows;
}

std::string AddressGroup(const std::string& address) {
    constexpr size_t kNetworkBytes = 8;
    const size_t begin = address.starts_with('[') ? 1 : 0;
    const std::string text = address.substr(begin, address.find_first_of("%]") - begin);
    in6_addr parsed{};
    if (inet_pton(AF_INET6, text.c_str(), &parsed) != 1 || IN6_IS_ADDR_V4MAPPED(&parsed)) {
        return address;
    }
    std::fill(std::begin(parsed.s6_addr) + kNetworkBytes, std::end(parsed.s6_addr), 0);
    char network[INET6_ADDRSTRLEN] = "";
    return inet_ntop(AF_INET6, &parsed, network, sizeof network);
}

int64_t CountTry(std::vector<Failures>& rows, const std::string& address, int64_t now) {
    RemoveOldRows(rows, now);
    for (const std::string& who : {std::string(), address}) {
        if (const int64_t wait = WaitLeft(RowOf(rows, who), now); wait > 0) {
            return wait;
        }
    }
    for (const std::string& who : {std::string(), address}) {
        Failures& row = RowOf(rows, who);
        ++row.count;
        row.last = now;
    }
    return 0;
}

int64_t BeginLogin(const std::string& address) {
    const velk::UniqueFd lock = AwaitLock(RunPath("failures.lock"));
    std::vector<Failures> rows = ReadRows();
    const int64_t wait = CountTry(rows, AddressGroup(address), SecondsSinceBoot());
    if (wait == 0) {
        WriteRows(rows);
    }
    return wait;
}

void ForgetFailures(const std::string& address) {
    const velk::UniqueFd lock = AwaitLock(RunPath("failures.lock"));
    std::vector<Failures> rows = ReadRows();
    std::erase_if(rows, [group = AddressGroup(address)](const Failures& row) {
        return row.address == group || row.address.empty();
    });
    WriteRows(rows);
}

}  // namespace velkweb
