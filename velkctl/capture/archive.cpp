// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// archive.cpp - writes a tar archive in memory, in the format ustar.
#include "velkctl/capture/archive.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

namespace velkctl {
namespace {

constexpr size_t kBlock = 512;
constexpr size_t kEndBlocks = 2;

// A field of a header.
struct Field {
    size_t begin;
    size_t size;
};

constexpr Field kName{0, 100};
constexpr Field kMode{100, 8};
constexpr Field kOwner{108, 8};
constexpr Field kGroup{116, 8};
constexpr Field kSize{124, 12};
constexpr Field kTime{136, 12};
constexpr Field kChecksum{148, 8};
constexpr Field kType{156, 1};
constexpr Field kTarget{157, 100};
constexpr Field kMagic{257, 8};

using Header = std::array<char, kBlock>;

void PutText(Header& header, const Field& field, std::string_view text) {
    std::copy_n(text.begin(), std::min(text.size(), field.size), &header[field.begin]);
}

// Writes the number in octal digits and a NUL. One that is too large for the field is cut to zero.
void PutNumber(Header& header, const Field& field, unsigned long long number) {
    std::array<char, 32> digits{};
    const int width = static_cast<int>(field.size) - 1;
    const int length = snprintf(digits.data(), digits.size(), "%0*llo", width, number);
    if (length <= width) {
        PutText(header, field, {digits.data(), static_cast<size_t>(length)});
        return;
    }
    PutNumber(header, field, 0);
}

// The sum of all bytes, those of its own field taken as blanks.
void PutChecksum(Header& header) {
    PutText(header, kChecksum, "        ");
    const unsigned sum =
        std::accumulate(header.begin(), header.end(), 0U,
                        [](unsigned all, char c) { return all + static_cast<unsigned char>(c); });
    constexpr Field kDigits{kChecksum.begin, kChecksum.size - 1};
    PutNumber(header, kDigits, sum);
    header[kDigits.begin + kDigits.size - 1] = '\0';
}

Header HeaderOf(char type, std::string_view name, const MemberFacts& facts) {
    Header header{};
    PutText(header, kName, name);
    PutNumber(header, kMode, facts.mode);
    PutNumber(header, kOwner, facts.owner);
    PutNumber(header, kGroup, facts.group);
    PutNumber(header, kSize, 0);
    PutNumber(header, kTime, static_cast<unsigned long long>(std::max<time_t>(facts.time, 0)));
    PutText(header, kType, {&type, 1});
    PutText(header, kMagic, {"ustar\00000", kMagic.size});
    return header;
}

std::string Closed(Header header) {
    PutChecksum(header);
    return {header.data(), header.size()};
}

}  // namespace

void Archive::AddFile(const std::string& name, const MemberFacts& facts, std::string_view bytes) {
    Header header = HeaderOf('0', name, facts);
    PutNumber(header, kSize, bytes.size());
    members_.append(Closed(header)).append(bytes);
    members_.resize((members_.size() + kBlock - 1) / kBlock * kBlock);
}

void Archive::AddFolder(const std::string& name, const MemberFacts& facts) {
    members_.append(Closed(HeaderOf('5', name + "/", facts)));
}

void Archive::AddFifo(const std::string& name, const MemberFacts& facts) {
    members_.append(Closed(HeaderOf('6', name, facts)));
}

void Archive::AddLink(const std::string& name, const MemberFacts& facts, std::string_view target) {
    Header header = HeaderOf('2', name, facts);
    PutText(header, kTarget, target);
    members_.append(Closed(header));
}

std::string Archive::Bytes() const {
    return members_ + std::string(kEndBlocks * kBlock, '\0');
}

}  // namespace velkctl
