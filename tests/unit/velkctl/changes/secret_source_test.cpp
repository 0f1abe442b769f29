// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "velkctl/changes/secret_source.h"

#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::ReadSecret;
using velkctl::Secret;

constexpr char kFile[] = "/tmp/secret";
constexpr char kHint[] = "; give - for standard input or @FILE for another file";

class ReadSecretTest : public testkit::DeviceTest {
  protected:
    // Reads "-" with a file as standard input; `rest` is its unread part.
    Secret FromStandardInput(const std::string& path, std::string* rest = nullptr) {
        const int saved = dup(STDIN_FILENO);
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        EXPECT_EQ(dup2(file, STDIN_FILENO), STDIN_FILENO);
        Secret secret = ReadSecret("-");
        char left[100];
        const ssize_t size = read(STDIN_FILENO, left, sizeof(left));
        if (rest != nullptr && size >= 0) {
            rest->assign(left, static_cast<size_t>(size));
        }
        EXPECT_EQ(dup2(saved, STDIN_FILENO), STDIN_FILENO);
        close(file);
        close(saved);
        return secret;
    }
    Secret FromFile(const std::string& text) {
        WriteFile(kFile, text);
        return ReadSecret(std::string("@") + kFile);
    }
};

TEST_F(ReadSecretTest, AnyOtherWordIsTheSecret) {
    for (const char* word : {"", "hunter2", "--", "-x", "a@b", "/tmp/secret", " @x", " -"}) {
        EXPECT_EQ(ReadSecret(word).text, word);
        EXPECT_EQ(ReadSecret(word).problem, "") << word;
    }
}

TEST_F(ReadSecretTest, AFileHasOneLine) {
    EXPECT_EQ(FromFile("hunter2\n").text, "hunter2");
    EXPECT_EQ(FromFile("hunter2").text, "hunter2");
    EXPECT_EQ(FromFile(" a b \n").text, " a b ");
    EXPECT_EQ(FromFile("hunter2\n").problem, "");
}

TEST_F(ReadSecretTest, TheLineIsTakenUnchanged) {
    EXPECT_EQ(FromFile("-\n").text, "-");
    EXPECT_EQ(FromFile("@/etc/passwd\n").text, "@/etc/passwd");
    EXPECT_EQ(FromFile("a\r\n").text, "a\r");
    EXPECT_EQ(FromFile(std::string("a\0b\n", 4)).text, std::string("a\0b", 3));
}

TEST_F(ReadSecretTest, AnEmptyLineIsAnEmptyText) {
    EXPECT_EQ(FromFile("\n").text, "");
    EXPECT_EQ(FromFile("\n").problem, "");
}

TEST_F(ReadSecretTest, AnEmptyFileIsNoSecret) {
    EXPECT_EQ(FromFile("").problem, "the file after @ is empty; give the value as one line");
}

TEST_F(ReadSecretTest, AFileWithMoreLinesIsTheWrongFile) {
    const std::string problem =
        "the file after @ has more than one line; give the value as the only one";
    EXPECT_EQ(FromFile("hunter2\nmore\n").problem, problem);
    EXPECT_EQ(FromFile("hunter2\n\n").problem, problem);
    EXPECT_EQ(FromFile("hunter2\nmore\n").text, "");
}

TEST_F(ReadSecretTest, AFileThatCannotBeReadIsNotNamed) {
    EXPECT_EQ(ReadSecret("@/tmp/hunter2").problem,
              std::string("the file after @ cannot be read; No such file or directory") + kHint);
    EXPECT_EQ(ReadSecret("@").problem,
              std::string("the file after @ cannot be read; No such file or directory") + kHint);
    EXPECT_EQ(ReadSecret("@/tmp").problem,
              std::string("the file after @ cannot be read; Is a directory") + kHint);
}

TEST_F(ReadSecretTest, ALineHasAtMost512Bytes) {
    EXPECT_EQ(FromFile(std::string(512, 'x') + "\n").text, std::string(512, 'x'));
    EXPECT_EQ(FromFile(std::string(513, 'x') + "\n").problem,
              "the file after @ has a line of more than 512 bytes; give the value alone");
}

TEST_F(ReadSecretTest, TheLongestLineIsAParameter) {
    WriteFile(kFile, std::string(600, 'x'));
    EXPECT_EQ(ReadSecret("@/tmp/secret", 600).text, std::string(600, 'x'));
    EXPECT_EQ(ReadSecret("@/tmp/secret", 599).problem,
              "the file after @ has a line of more than 599 bytes; give the value alone");
}

TEST_F(ReadSecretTest, StandardInputIsReadUpToOneLine) {
    WriteFile(kFile, "hunter2\nmore\n");
    std::string rest;
    const Secret secret = FromStandardInput(kFile, &rest);
    EXPECT_EQ(secret.text, "hunter2");
    EXPECT_EQ(secret.problem, "");
    EXPECT_EQ(rest, "more\n");
}

TEST_F(ReadSecretTest, StandardInputNeedsNoEndOfLine) {
    WriteFile(kFile, "hunter2");
    EXPECT_EQ(FromStandardInput(kFile).text, "hunter2");
}

TEST_F(ReadSecretTest, EmptyStandardInputIsNoSecret) {
    EXPECT_EQ(FromStandardInput("/dev/null").problem,
              "standard input is empty; give the value as one line");
}

TEST_F(ReadSecretTest, StandardInputThatCannotBeReadIsReported) {
    EXPECT_EQ(FromStandardInput("/tmp").problem,
              std::string("standard input cannot be read; Is a directory") + kHint);
}

}  // namespace
