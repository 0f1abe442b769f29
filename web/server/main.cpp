// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - velk-web: the server side of the settings page, a program for the web server's
// cgi-bin.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "web/server/answer.h"
#include "web/server/api.h"
#include "web/server/log.h"
#include "web/server/request.h"
#include "web/server/set_password.h"

namespace {

// No request takes longer. Jobs are processes of their own.
constexpr unsigned kRequestSeconds = 90;
// A browser that does not read its answer holds nothing longer.
constexpr unsigned kAnswerSeconds = 20;

constexpr char kUsage[] =
    "usage: velk-web --set-password USER | --remove-user USER | --help | --version\n"
    "\n"
    "The server side of the settings page. A web server runs it as cgi-bin/velk.\n"
    "\n"
    "  --set-password USER  set the password of a user, who is added if new: the line on\n"
    "                       standard input, or the answer at the terminal\n"
    "  --remove-user USER   remove a user\n"
    "  --help               show this help\n"
    "  --version            show the version\n";

velkweb::Answer AnswerOf(const velkweb::Variables& variables) {
    try {
        return velkweb::AnswerRequest(velkweb::MakeRequest(variables));
    } catch (const std::exception&) {
        return velkweb::ErrorAnswer(500,
                                    {.message = "the server has failed",
                                     .remedy = "try again; restart the device if this remains"});
    }
}

int Serve(const velkweb::Variables& variables) {
    (void)signal(SIGPIPE, SIG_IGN);
    (void)alarm(kRequestSeconds);
    (void)umask(077);
    const velkweb::Answer answer = AnswerOf(variables);
    (void)alarm(kAnswerSeconds);
    const bool is_written = velk::WriteAll(STDOUT_FILENO, velkweb::CgiText(answer));
    (void)close(STDOUT_FILENO);
    velkweb::WriteLog();
    return is_written ? EXIT_SUCCESS : EXIT_FAILURE;
}

int RunCommandLine(const std::vector<std::string>& words) {
    if (words.size() == 2 && words[0] == "--set-password") {
        return velkweb::SetPassword(words[1]);
    }
    if (words.size() == 2 && words[0] == "--remove-user") {
        return velkweb::RemoveUser(words[1]);
    }
    if (words.size() == 1 && words[0] == "--help") {
        return fputs(kUsage, stdout) >= 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    if (words.size() == 1 && words[0] == "--version") {
        return puts("velk-web " VELK_WEB_VERSION) >= 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    (void)fputs(kUsage, stderr);
    return 2;
}

}  // namespace

// A web server may pass words of the address as arguments: they do not count.
int main(int argc, char** argv) {
    const velkweb::Variables variables = velkweb::OwnVariables();
    if (variables.contains("GATEWAY_INTERFACE")) {
        return Serve(variables);
    }
    return RunCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc});
}
