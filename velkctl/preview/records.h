// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// records.h - answers, files and failures as texts, to pass them between processes.
#ifndef VELKCTL_PREVIEW_RECORDS_H_
#define VELKCTL_PREVIEW_RECORDS_H_

#include <string>
#include <string_view>

#include "velkctl/call/answer.h"
#include "velkctl/files/file_image.h"
#include "velkctl/preview/private_copy.h"

namespace velkctl {

std::string RecordOf(const Answer& answer);
Answer AnswerIn(std::string_view record);

std::string RecordOf(const FileImage& image);
FileImage ImageIn(std::string_view record);

std::string RecordOf(const CopyFailure& failure);
CopyFailure FailureIn(std::string_view record);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_RECORDS_H_
