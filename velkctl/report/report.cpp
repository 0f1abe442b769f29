// report.cpp - the output of one run: text for people, or one JSON document for programs.
#include "velkctl/report/report.h"

#include <utility>

#include "velkctl/report/output.h"
#include "velkctl/report/result_codes.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int kSchema = 2;  // raised if a change can break a program that reads the document
constexpr size_t kColumns = 80;
constexpr std::string_view kPrefix = "velkctl: ";
constexpr std::string_view kSeparator = "; ";
constexpr std::string_view kNewLine = "\n  ";
constexpr std::string_view kFix = "fix: ";
constexpr std::string_view kAdvice = "give ";  // begins the advice of a message

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json CauseOf(const Problem& problem) {
    if (problem.file.empty()) {
        return nullptr;
    }
    Json cause;
    cause["file"] = problem.file;
    cause["line"] = problem.line == 0 ? Json(nullptr) : Json(problem.line);
    return cause;
}

Json ErrorOf(const Problem& problem) {
    Json error;
    error["message"] = problem.message;
    error["detail"] = TextOrNull(problem.detail);
    error["cause"] = CauseOf(problem);
    error["remedy"] = TextOrNull(problem.remedy);
    error["setting"] = TextOrNull(problem.setting);
    error["result"] = nullptr;
    if (problem.result) {
        error["result"] = ResultInJson(*problem.result);
    }
    return error;
}

// Breaks a text that is too long for one line of a terminal at its semicolons. Advice on a line of
// its own is marked as the fix. A fix stays whole: it may be a line for the shell.
std::string Broken(std::string_view text, size_t indent) {
    std::string lines;
    while (indent + text.size() > kColumns && !text.starts_with(kFix)) {
        const size_t end = text.find(kSeparator);
        if (end == std::string_view::npos) {
            break;
        }
        lines.append(text.substr(0, end)).append(kNewLine);
        text.remove_prefix(end + kSeparator.size());
        indent = kNewLine.size() - 1;
        if (text.starts_with(kAdvice)) {
            lines.append(kFix);
            indent += kFix.size();
        }
    }
    return lines.append(text);
}

}  // namespace

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

std::string InLines(const Problem& problem) {
    std::string text = Broken(problem.message, kPrefix.size());
    if (!problem.detail.empty()) {
        text.append(kNewLine).append(Broken(problem.detail, kNewLine.size() - 1));
    }
    if (!problem.remedy.empty()) {
        text.append(kNewLine).append(kFix).append(problem.remedy);
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

void Report::Member(std::string_view key, Json value) {
    if (is_json()) {
        document_->members[std::string(key)] = std::move(value);
    }
}

void Report::Note(std::string_view note) {
    if (is_json()) {
        document_->notes.push_back(std::string(note));
    } else {
        PrintError(note);
    }
}

void Report::Note(const Problem& problem) {
    Note(is_json() ? OneLine(problem) : InLines(problem));
}

void Report::Complain(const Problem& problem) {
    if (is_json()) {
        document_->errors.push_back(ErrorOf(problem));
    } else {
        PrintError(InLines(problem));
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
