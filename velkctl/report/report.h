// report.h - what one run of velkctl says: text for people, or one JSON document for programs.
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

// Something that went wrong.
struct Problem {
    std::string message;
    std::string setting{};        // that it is about
    std::optional<int> result{};  // of the library, when that is what went wrong
};

// Text goes out as it comes: what was asked for to standard output, what went wrong to standard
// error, one line each. JSON goes out at the end, errors and all, as docs/velkctl.schema.json says:
//
//   {"schema": 1, "verb": "get", "status": 0, ..., "notes": [], "errors": []}
class Report {
  public:
    enum class Form { kText, kJson };

    explicit Report(Form form);
    ~Report();
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;

    bool is_json() const { return form_ == Form::kJson; }
    void set_verb(std::string_view verb) { verb_ = verb; }

    // For people alone, as it stands.
    void Text(std::string_view text) const;
    // For programs alone: a member of the document, in the order of the calls.
    void Member(std::string_view key, Json value);

    // What a person should know and a script need not mind.
    void Note(std::string_view note);
    void Complain(const Problem& problem);
    void Complain(std::string message) { Complain(Problem{std::move(message)}); }
    // Complains about a usage that nothing is done for.
    ExitStatus Refuse(std::string message);
    ExitStatus Refuse(const Problem& problem);

    // Says all that is left to say. A run that reported through nothing else needs it too.
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
