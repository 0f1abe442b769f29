// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Documents in files and in standard input.
#include "velkctl/documents/document_file.h"

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::ReadDocumentFile;
using velkctl::SettingsDocument;

constexpr char kFile[] = "/var/libvelk/net.json";
constexpr char kDocument[] = R"({"schema": 1, "settings": {"ntp": "on"}})";

class DocumentFile : public testkit::DeviceTest {};

std::string ProblemOf(const std::string& word) {
    const SettingsDocument document = ReadDocumentFile(word);
    EXPECT_EQ(document.problems.size(), 1U);
    const velkctl::Problem& problem = document.problems.front();
    return problem.message + (problem.detail.empty() ? "" : "; " + problem.detail);
}

TEST_F(DocumentFile, IsReadWhole) {
    WriteFile(kFile, kDocument);
    const SettingsDocument document = ReadDocumentFile(kFile);
    EXPECT_EQ(document.name, kFile);
    ASSERT_EQ(document.settings.size(), 1U);
    EXPECT_EQ(document.settings[0].setting.name(), "ntp");
}

TEST_F(DocumentFile, MayBeStandardInput) {
    WriteFile(kFile, kDocument);
    const int saved = dup(STDIN_FILENO);
    const int file = open(kFile, O_RDONLY | O_CLOEXEC);
    (void)dup2(file, STDIN_FILENO);
    const SettingsDocument document = ReadDocumentFile("-");
    (void)dup2(saved, STDIN_FILENO);
    (void)close(saved);
    (void)close(file);
    EXPECT_EQ(document.name, "standard input");
    EXPECT_EQ(document.settings.size(), 1U);
}

TEST_F(DocumentFile, ThatCannotBeReadIsAProblem) {
    EXPECT_EQ(ProblemOf("/var/libvelk/none.json"),
              "/var/libvelk/none.json: cannot be read; No such file or directory");
    EXPECT_EQ(ProblemOf("/var/libvelk"), "/var/libvelk: cannot be read; Is a directory");
    WriteFile(kFile, std::string(velkctl::kLongestDocument + 1, ' '));
    EXPECT_EQ(ProblemOf(kFile), "/var/libvelk/net.json: cannot be read; it is longer than 64 KiB");
    WriteFile(kFile, std::string(velkctl::kLongestDocument - 2, ' ') + "[]");
    EXPECT_EQ(ProblemOf(kFile),
              "/var/libvelk/net.json: a document is an object; give {\"schema\": 1, "
              "\"settings\": {...}}");
}

}  // namespace
