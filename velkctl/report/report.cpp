// report.cpp - the output of one run: text for people, or one JSON document for programs.
#include "velkctl/report/report.h"

#include <utility>

#include "velkctl/report/output.h"
#include "velkctl/report/result_codes.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int kSchema = 3;  // raised if a change can break a program that reads the document
constexpr size_t kColumns = 80;
constexpr std::string_view kPrefix = "velkctl: ";
constexpr std::string_view kSeparator = "; ";
constexpr std::string_view kNewLine = "\n  ";
constexpr std::string_view kFix = "fix: ";
constexpr std::string_view kAdvice = "give ";  // begins the advice of a message
constexpr std::string_view kContrast = ", but ";

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

// An apostrophe follows a letter.
bool OpensQuote(std::string_view text, size_t at) {
    return text[at] == '\'' && (at == 0 || text[at - 1] == ' ');
}

bool ClosesQuote(std::string_view text, size_t at) {
    return text[at] == '\'' && (at + 1 == text.size() ||
                                std::string_view(" ,;:)").find(text[at + 1]) != std::string::npos);
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

Json ProblemInJson(const Problem& problem) {
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

std::string InLinesOf80(std::string_view text, size_t indent) {
    std::string lines;
    while (indent + text.size() > kColumns && !text.starts_with(kFix)) {
        const std::string_view clause = FirstClause(text);
        if (clause.size() == text.size()) {
            break;
        }
        lines.append(clause).append(kNewLine);
        text.remove_prefix(clause.size() + (clause.ends_with(',') ? 1 : kSeparator.size()));
        indent = kNewLine.size() - 1;
        if (text.starts_with(kAdvice)) {
            lines.append(kFix);
            indent += kFix.size();
        }
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

std::string InLines(const Problem& problem) {
    std::string text = InLinesOf80(problem.message, kPrefix.size());
    if (!problem.detail.empty()) {
        text.append(kNewLine).append(InLinesOf80(problem.detail, kNewLine.size() - 1));
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
        Note(line);
    }
}

void Report::Note(std::string_view note) {
    if (is_json()) {
        document_->notes.push_back(std::string(note));
    } else if (detail_ != Detail::kQuiet) {
        PrintError(note, Tone::kNote);
    }
}

void Report::Note(const Problem& problem) {
    Note(is_json() ? OneLine(problem) : InLines(problem));
}

void Report::Complain(const Problem& problem) {
    ShowToolOutput();
    if (is_json()) {
        document_->errors.push_back(ProblemInJson(problem));
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
