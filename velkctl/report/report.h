// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// report.h - the output of one run: text for people, or one JSON document for programs.
#ifndef VELKCTL_REPORT_REPORT_H_
#define VELKCTL_REPORT_REPORT_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/exit_status.h"
#include <nlohmann/json_fwd.hpp>

namespace velkctl {

using Json = nlohmann::ordered_json;

struct Problem {
    std::string message;          // the failure: "eth0.dns: could not be set"
    std::string setting{};        // the setting it is about; empty: none
    std::optional<int> result{};  // the result of the library, if the library reported the failure
    std::string detail{};         // the reason
    std::string remedy{};
    std::string file{};     // the place of the likely cause; empty: unknown
    size_t line = 0;        // 0: no line of the file
    size_t column = 0;      // 0: no column of the line
    std::string pointer{};  // the JSON pointer to a value in the file; empty: none
};

// Returns the part of the text before its first "; " or ", but ", with the comma; the whole text if
// it has neither. A quotation stays whole.
std::string_view FirstClause(std::string_view text);

inline constexpr size_t kErrorIndent = std::string_view("velkctl: ").size();

// Breaks a text that is too long for one line of a terminal at its semicolons and before "but". A
// fix stays whole: it may be a line for the shell. `indent` is the width of the text before it on
// its line; the next lines are indented by two.
std::string WrappedAt80(std::string_view text, size_t indent);

// "eth1.rate: could not be read; no supported wireless adapter is attached; fix: attach an adapter
// of ... (LIB_VELK_NO_ADAPTER, -5)"
std::string OneLine(const Problem& problem);

// The same for people: the failure on the first line, after `indent` columns; reason, fix and
// result on indented lines. A message with advice at its end stays on one line if it fits.
std::string MessageLines(const Problem& problem, size_t indent = kErrorIndent);

// Returns the text; null if it is empty.
Json TextOrNull(const std::string& text);

// Returns {"file": ..., "line": ...}; null without a file, its `line` null without a line.
Json CauseInJson(const std::string& file, size_t line);

// {"message": ..., "detail": ..., "cause": {"file": ..., "line": ...}, "remedy": ...,
// "setting": ..., "result": ...}. A member that is unknown is null. Advice at the end of the
// message, as in "...; give on or off", is the remedy.
Json ProblemInJson(const Problem& problem);

// Text is printed at once: answers to standard output, problems and notes to standard error. JSON
// is printed at the end, as docs/velkctl.schema.json describes it:
//
//   {"schema": 3, "verb": "get", "status": 0, ..., "notes": [], "errors": []}
class Report {
  public:
    enum class Form { kText, kJson };

    explicit Report(Form form);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    // The amount of output in text. A document has all of it, and tools' output with kVerbose.
    enum class Detail { kQuiet, kUsual, kVerbose };

    bool is_json() const { return form_ == Form::kJson; }
    void set_detail(Detail detail) { detail_ = detail; }
    bool is_verbose() const { return detail_ == Detail::kVerbose; }
    // True if a terminal may show how long a command has been waiting.
    bool shows_progress() const { return !is_json() && detail_ != Detail::kQuiet; }
    bool shows_notes() const { return is_json() || detail_ != Detail::kQuiet; }
    void set_verb(std::string_view verb) { verb_ = verb; }

    // Prints a text as it is. Does nothing in JSON.
    void Text(std::string_view text) const;
    // The same for a text that is no requested value. Does nothing with kQuiet.
    void Inform(std::string_view text) const;
    // Adds a member to the document, in the order of the calls. Does nothing in text.
    void Member(std::string_view key, Json value);

    // Keeps the lines that tools printed, in the place of earlier ones. Complain() shows them
    // before its problem; otherwise they are not shown. With kVerbose shows them at once.
    void KeepToolOutput(std::vector<std::string> lines);
    // Shows the kept lines: in text without a mark, in JSON among the notes. With kQuiet only in
    // the document.
    void ShowToolOutput();

    // Adds information for a person that a script can ignore. In text it is marked as a note. With
    // kQuiet only to the document.
    void Note(std::string_view note);
    void Note(const Problem& problem);
    void Complain(const Problem& problem);
    void Complain(std::string message) { Complain(Problem{std::move(message)}); }
    // Reports a usage that is not valid. The caller has done nothing yet.
    ExitStatus Refuse(std::string message);
    ExitStatus Refuse(const Problem& problem);

    // Prints the document. Every run must call it, at its end.
    void Finish(ExitStatus status) { Finish(static_cast<int>(status)); }
    // The same with the status of a run that a signal ends.
    void Finish(int status);

  private:
    struct Document;

    // Adds a note. In text `mark` comes before it.
    void AddNote(std::string_view mark, std::string_view note);

    const Form form_;
    Detail detail_ = Detail::kUsual;
    std::string verb_;
    std::vector<std::string> tool_output_;
    std::unique_ptr<Document> document_;
};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_REPORT_H_
