// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// records.cpp - answers, files and failures as texts, to pass them between processes.
#include "velkctl/preview/records.h"

#include <algorithm>
#include <cstring>

#include "velkctl/text/data_bytes.h"

namespace velkctl {
namespace {

struct AnswerRecord {
    int result;
    Data data;
};

// Before the path, a NUL and the bytes.
struct ImageRecord {
    bool exists;
    mode_t mode;
    uid_t owner;
    gid_t group;
    int error;
};

template <typename Record>
std::string BytesOf(const Record& record) {
    return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

// Takes the record from the start of the bytes. Both processes are the same program.
template <typename Record>
Record Take(std::string_view& bytes) {
    Record record{};
    const size_t size = std::min(bytes.size(), sizeof(record));
    memcpy(&record, bytes.data(), size);
    bytes.remove_prefix(size);
    return record;
}

}  // namespace

std::string RecordOf(const Answer& answer) {
    return BytesOf(AnswerRecord{answer.result, answer.data});
}

Answer AnswerIn(std::string_view record) {
    const AnswerRecord taken = Take<AnswerRecord>(record);
    return {.result = taken.result, .data = taken.data};
}

std::string RecordOf(const FileImage& image) {
    std::string record =
        BytesOf(ImageRecord{image.exists, image.mode, image.owner, image.group, image.error});
    record.append(image.path).push_back('\0');
    return record.append(image.bytes);
}

FileImage ImageIn(std::string_view record) {
    const ImageRecord taken = Take<ImageRecord>(record);
    const size_t end = std::min(record.find('\0'), record.size() - 1);
    return {.path = std::string(record.substr(0, end)),
            .exists = taken.exists,
            .bytes = std::string(record.substr(end + 1)),
            .mode = taken.mode,
            .owner = taken.owner,
            .group = taken.group,
            .error = taken.error};
}

std::string RecordOf(const CopyFailure& failure) {
    return BytesOf(failure.error) + failure.step;
}

CopyFailure FailureIn(std::string_view record) {
    const int error = Take<int>(record);
    return {std::string(record), error};
}

}  // namespace velkctl
