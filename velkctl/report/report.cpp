// report.cpp - what one run of velkctl says: text for people, or one JSON document for programs.
#include "velkctl/report/report.h"

#include <utility>

#include "velkctl/report/result_codes.h"
#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int kSchema = 1;  // raised when a program that reads the document could trip

Json ErrorOf(const Problem& problem) {
    Json error;
    error["message"] = problem.message;
    error["setting"] = problem.setting.empty() ? Json(nullptr) : Json(problem.setting);
    error["result"] = nullptr;
    if (problem.result) {
        error["result"] = ResultInJson(*problem.result);
    }
    return error;
}

}  // namespace

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

void Report::Complain(const Problem& problem) {
    if (is_json()) {
        document_->errors.push_back(ErrorOf(problem));
    } else {
        PrintError(problem.message);
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
    // In ASCII alone, which every terminal shows and every reader of JSON takes.
    Print(whole.dump(2, ' ', true, Json::error_handler_t::replace) + "\n");
}

}  // namespace velkctl
