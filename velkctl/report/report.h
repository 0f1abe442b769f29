// report.h - the output of one run: text for people, or one JSON document for programs.
#ifndef VELKCTL_REPORT_REPORT_H_
#define VELKCTL_REPORT_REPORT_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>

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
    std::string file{};  // the place of the likely cause; empty: unknown
    size_t line = 0;     // 0: no line of the file
};

// Breaks a text that is too long for one line of a terminal at its semicolons and before "but".
// Advice on a line of its own is marked as the fix. A fix stays whole: it may be a line for the
// shell. `indent` is the width of the text before it on its line; the next lines are indented by
// two.
std::string InLinesOf80(std::string_view text, size_t indent);

// "eth1.rate: could not be read; no supported wireless adapter is attached; fix: attach an adapter
// of ... (LIB_VELK_NO_ADAPTER, -5)"
std::string OneLine(const Problem& problem);

// The same for people: the failure on the first line; reason, fix and result on indented lines.
std::string InLines(const Problem& problem);

// Text is printed at once: answers to standard output, problems and notes to standard error. JSON
// is printed at the end, as docs/velkctl.schema.json describes it:
//
//   {"schema": 2, "verb": "get", "status": 0, ..., "notes": [], "errors": []}
class Report {
  public:
    enum class Form { kText, kJson };

    explicit Report(Form form);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    bool is_json() const { return form_ == Form::kJson; }
    void set_verb(std::string_view verb) { verb_ = verb; }

    // Prints a text as it is. Does nothing in JSON.
    void Text(std::string_view text) const;
    // Adds a member to the document, in the order of the calls. Does nothing in text.
    void Member(std::string_view key, Json value);

    // Adds information for a person that a script can ignore.
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

    const Form form_;
    std::string verb_;
    std::unique_ptr<Document> document_;
};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_REPORT_H_
