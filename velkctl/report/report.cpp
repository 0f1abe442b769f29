// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// report.cpp - the output of one run: text for people, or one JSON document for programs.
#include "velkctl/report/report.h"

#include <algorithm>
#include <array>
#include <utility>

#include "velkctl/report/output.h"
#include "velkctl/report/result_codes.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int kSchema = 3;  // raised if a change can break a program that reads the document
constexpr size_t kColumns = 80;
constexpr std::string_view kNote = "note: ";
constexpr std::string_view kSeparator = "; ";
constexpr std::string_view kNewLine = "\n  ";
constexpr std::string_view kFix = "fix: ";
constexpr std::string_view kContrast = ", but ";

// The beginnings of a clause that advises.
constexpr std::array<std::string_view, 9> kAdvice{
    "fix: ", "give ", "did you mean ", "leave ", "put ", "set ", "usage: ", "write ", "'velkctl "};

// An apostrophe follows a letter.
bool OpensQuote(std::string_view text, size_t at) {
    return text[at] == '\'' && (at == 0 || text[at - 1] == ' ');
}

bool ClosesQuote(std::string_view text, size_t at) {
    return text[at] == '\'' && (at + 1 == text.size() ||
                                std::string_view(" ,;:)").find(text[at + 1]) != std::string::npos);
}

bool IsAdvice(std::string_view clause) {
    return std::ranges::any_of(
        kAdvice, [clause](std::string_view beginning) { return clause.starts_with(beginning); });
}

bool IsUsage(std::string_view remedy) {
    return remedy.starts_with("usage: ");
}

// Returns the text after its first clause.
std::string_view AfterClause(std::string_view text) {
    const std::string_view clause = FirstClause(text);
    const size_t separator = clause.ends_with(',') ? 1 : kSeparator.size();
    return text.substr(std::min(text.size(), clause.size() + separator));
}

// Returns the advice at the end of a message; empty if none.
std::string_view AdviceIn(std::string_view message) {
    std::string_view rest = AfterClause(message);
    while (!rest.empty() && !IsAdvice(rest)) {
        rest = AfterClause(rest);
    }
    return rest;
}

// Moves the advice at the end of the message to the remedy, and the clauses before it, after the
// first, to the detail.
Problem WithAdviceAsRemedy(Problem problem) {
    const std::string advice(AdviceIn(problem.message));
    if (advice.empty() || !problem.remedy.empty() || !problem.detail.empty()) {
        return problem;
    }
    problem.remedy = advice.substr(advice.starts_with(kFix) ? kFix.size() : 0);
    problem.message.resize(problem.message.size() - advice.size() - kSeparator.size());
    const std::string_view failure = FirstClause(problem.message);
    if (failure.size() < problem.message.size() && !failure.ends_with(',')) {
        problem.detail = AfterClause(problem.message);
        problem.message.resize(failure.size());
    }
    return problem;
}

}  // namespace

std::string_view FirstClause(std::string_view text) {
    bool is_quoted = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (is_quoted) {
            is_quoted = !ClosesQuote(text, at);
            continue;
        }
        is_quoted = OpensQuote(text, at);
        if (text.substr(at).starts_with(kSeparator)) {
            return text.substr(0, at);
        }
        if (text.substr(at).starts_with(kContrast)) {
            return text.substr(0, at + 1);
        }
    }
    return text;
}

Json CauseInJson(const std::string& file, size_t line) {
    if (file.empty()) {
        return nullptr;
    }
    Json cause;
    cause["file"] = file;
    cause["line"] = line == 0 ? Json(nullptr) : Json(line);
    return cause;
}

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json ProblemInJson(const Problem& given) {
    const Problem problem = WithAdviceAsRemedy(given);
    Json error;
    error["message"] = problem.message;
    error["detail"] = TextOrNull(problem.detail);
    error["cause"] = CauseInJson(problem.file, problem.line);
    if (problem.column != 0) {
        error["cause"]["column"] = problem.column;
    }
    if (!problem.pointer.empty()) {
        error["cause"]["pointer"] = problem.pointer;
    }
    error["remedy"] = TextOrNull(problem.remedy);
    error["setting"] = TextOrNull(problem.setting);
    error["result"] = nullptr;
    if (problem.result) {
        error["result"] = ResultInJson(*problem.result);
    }
    return error;
}

std::string WrappedAt80(std::string_view text, size_t indent) {
    std::string lines;
    while (indent + text.size() > kColumns && !text.starts_with(kFix)) {
        const std::string_view clause = FirstClause(text);
        if (clause.size() == text.size()) {
            break;
        }
        lines.append(clause).append(kNewLine);
        text.remove_prefix(clause.size() + (clause.ends_with(',') ? 1 : kSeparator.size()));
        indent = kNewLine.size() - 1;
    }
    return lines.append(text);
}

std::string OneLine(const Problem& problem) {
    std::string text = problem.message;
    if (!problem.detail.empty()) {
        text.append(kSeparator).append(problem.detail);
    }
    if (!problem.remedy.empty()) {
        text.append(kSeparator).append(kFix).append(problem.remedy);
    }
    if (problem.result) {
        text.append(" (").append(FindResultCode(*problem.result).name).append(", ");
        text.append(std::to_string(*problem.result)).append(")");
    }
    return text;
}

std::string MessageLines(const Problem& given, size_t indent) {
    const bool fits = indent + given.message.size() <= kColumns;
    const Problem problem = fits ? given : WithAdviceAsRemedy(given);
    std::string text = WrappedAt80(problem.message, indent);
    if (!problem.detail.empty()) {
        text.append(kNewLine).append(WrappedAt80(problem.detail, kNewLine.size() - 1));
    }
    if (!problem.remedy.empty()) {
        text.append(kNewLine).append(IsUsage(problem.remedy) ? "" : kFix).append(problem.remedy);
    }
    if (problem.result) {
        text.append(kNewLine).append("result: ").append(ResultName(*problem.result));
    }
    return text;
}

struct Report::Document {
    Json members = Json::object();
    Json notes = Json::array();
    Json errors = Json::array();
};

Report::Report(Form form) : form_(form), document_(std::make_unique<Document>()) {
}

Report::~Report() = default;

void Report::Text(std::string_view text) const {
    if (!is_json()) {
        Print(text);
    }
}

void Report::Inform(std::string_view text) const {
    if (detail_ != Detail::kQuiet) {
        Text(text);
    }
}

void Report::Member(std::string_view key, Json value) {
    if (is_json()) {
        document_->members[std::string(key)] = std::move(value);
    }
}

void Report::KeepToolOutput(std::vector<std::string> lines) {
    tool_output_ = std::move(lines);
    if (is_verbose()) {
        ShowToolOutput();
    }
}

void Report::ShowToolOutput() {
    for (const std::string& line : std::exchange(tool_output_, {})) {
        AddNote("", line);
    }
}

void Report::Note(std::string_view note) {
    AddNote(kNote, note);
}

void Report::AddNote(std::string_view mark, std::string_view note) {
    if (is_json()) {
        document_->notes.push_back(std::string(note));
    } else if (detail_ != Detail::kQuiet) {
        PrintError(std::string(mark).append(note), Tone::kNote);
    }
}

void Report::Note(const Problem& problem) {
    Note(is_json() ? OneLine(problem) : MessageLines(problem, kErrorIndent + kNote.size()));
}

void Report::Complain(const Problem& problem) {
    ShowToolOutput();
    if (is_json()) {
        document_->errors.push_back(ProblemInJson(problem));
    } else {
        PrintError(MessageLines(problem));
    }
}

ExitStatus Report::Refuse(std::string message) {
    return Refuse(Problem{std::move(message)});
}

ExitStatus Report::Refuse(const Problem& problem) {
    Complain(problem);
    return ExitStatus::kInvalid;
}

void Report::Finish(int status) {
    if (!is_json()) {
        return;
    }
    Json whole;
    whole["schema"] = kSchema;
    whole["verb"] = verb_.empty() ? Json(nullptr) : Json(verb_);
    whole["status"] = status;
    whole.update(document_->members);
    whole["notes"] = document_->notes;
    whole["errors"] = document_->errors;
    // ASCII only: every terminal shows it and every JSON reader takes it.
    Print(whole.dump(2, ' ', true, Json::error_handler_t::replace) + "\n");
}

}  // namespace velkctl
