// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer_check.cpp - compares the answer and the files of a call with a fault with the expected
// ones.
#include "fault/kit/answer_check.h"

#include <cstring>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace fault {
namespace {

const std::string kCleared(VELK_DATA_SIZE, '\0');

std::string WithFirstByte(char byte) {
    std::string data = kCleared;
    data[0] = byte;
    return data;
}

std::string HeaderOf(const _velk_request& record) {
    return {reinterpret_cast<const char*>(&record), offsetof(_velk_request, data)};
}

// True for data that is written before a step that can run out of memory. With a result of -1 it
// has no meaning.
bool IsFirstGuess(const _velk_request& request, const std::string& data) {
    const bool has_one = request.command_id == VELK_CMD_APIPA || request.command_id == VELK_CMD_NTP;
    return request.command_type == VELK_GET && has_one && data == WithFirstByte(VELK_OFF);
}

}  // namespace

AnswerCheck::AnswerCheck(const Scene& scene, const _velk_request& request,
                         const Reference& reference, const Fault& fault)
    : scene_(scene),
      request_(request),
      reference_(reference),
      fault_(fault),
      expectation_(ExpectationOf(fault, scene, request, reference)) {
    if (expectation_.notice == Notice::kCut) {
        const LoggedCall& read = *expectation_.call;
        cut_ = Trial(scene, request, {{read.file, read.read_before}}).RunWithoutFault();
    }
}

void AnswerCheck::Check(const Outcome& outcome) {
    EXPECT_EQ(HeaderOf(outcome.response), HeaderOf(reference_.outcome.response));
    CheckAnswer(outcome);
    CheckFiles(outcome);
    CheckWireless(outcome);
}

void AnswerCheck::CheckAnswer(const Outcome& outcome) {
    const bool fails_later =
        fault_.reach == testkit::Reach::kAllFrom && outcome.result == LIB_VELK_FAILURE;
    Scene other = scene_;
    switch (expectation_.notice) {
        case Notice::kNone:
            CheckAs(reference_.outcome, outcome);
            break;
        case Notice::kFailure:
            CheckReportedFailure(outcome);
            break;
        case Notice::kNoAddress:
        case Notice::kOldResult:
            EXPECT_EQ(outcome.result, LIB_VELK_SUCCESS);
            EXPECT_EQ(testkit::Data(outcome.response), kCleared);
            break;
        case Notice::kNoResult:
            EXPECT_EQ(outcome.result, LIB_VELK_SUCCESS);
            EXPECT_EQ(testkit::Data(outcome.response), WithFirstByte(VELK_NTP_NO_RESULT));
            break;
        case Notice::kNoAdapter:
            other.has_adapter = false;
            CheckAsInScene(other, outcome);
            break;
        case Notice::kNoCable:
            CheckWithoutCable(outcome);
            break;
        case Notice::kCut:
            fails_later ? CheckReportedFailure(outcome) : CheckAs(cut_->outcome, outcome);
            break;
    }
}

// A value may be refused before the library checks whether its file can be edited.
void AnswerCheck::CheckReportedFailure(const Outcome& outcome) {
    const bool is_of_an_edit = expectation_.call != nullptr && !expectation_.call->file.empty();
    const bool is_refused = reference_.outcome.result == LIB_VELK_INVALID_PARAMETER;
    if (!is_of_an_edit || !is_refused || outcome.result != LIB_VELK_INVALID_PARAMETER) {
        EXPECT_EQ(outcome.result, LIB_VELK_FAILURE);
    }
    const std::string data = testkit::Data(outcome.response);
    EXPECT_TRUE(data == kCleared || IsFirstGuess(request_, data)) << testing::PrintToString(data);
}

// Without a cable a call continues where it ends with a cable, and so reaches the failing call too.
void AnswerCheck::CheckWithoutCable(const Outcome& outcome) {
    Scene other = scene_;
    other.has_cable = false;
    if (scene_.has_cable && outcome.result == LIB_VELK_FAILURE) {
        CheckReportedFailure(outcome);
        return;
    }
    if (scene_.has_cable && outcome.result == LIB_VELK_NO_ADAPTER) {
        other.has_adapter = false;
    }
    CheckAsInScene(other, outcome);
}

void AnswerCheck::CheckAsInScene(const Scene& scene, const Outcome& outcome) {
    CheckAs(Trial(scene, request_).RunAgain(), outcome);
}

void AnswerCheck::CheckAs(const Outcome& expected, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, expected.result);
    EXPECT_EQ(testkit::Data(outcome.response), testkit::Data(expected.response));
}

void AnswerCheck::CheckFiles(const Outcome& outcome) {
    for (const auto& [path, text] : outcome.files) {
        const bool is_of_cut = cut_ && text == cut_->outcome.files.at(path);
        EXPECT_TRUE(reference_.states.at(path).contains(text) || is_of_cut)
            << path << " holds a text that it never contains: "
            << (text ? std::to_string(text->size()) + " bytes" : "missing");
    }
    if (outcome.result == LIB_VELK_SUCCESS) {
        CheckFilesOfSuccess(outcome);
    }
}

// A successful request has changed its files, except by lines that the shell did not run.
void AnswerCheck::CheckFilesOfSuccess(const Outcome& outcome) {
    const bool is_edit_of_cut = cut_ && request_.command_type == VELK_SET;
    const Files& after = is_edit_of_cut ? cut_->outcome.files : reference_.outcome.files;
    const std::set<std::string> may_differ = FilesOfFailedLines(fault_, reference_);
    for (const auto& [path, text] : outcome.files) {
        EXPECT_TRUE(text == after.at(path) || may_differ.contains(path))
            << path << " is not as after";
    }
}

// The daemon stores a configuration completely or not at all.
void AnswerCheck::CheckWireless(const Outcome& outcome) {
    const std::string& expected = outcome.result == LIB_VELK_SUCCESS ? reference_.outcome.wireless
                                                                     : reference_.wireless_before;
    EXPECT_TRUE(outcome.wireless == expected) << "the daemon's configuration";
}

}  // namespace fault
