// change_words.h - reads the changes that the words of a command line ask for.
#ifndef VELKCTL_VERBS_CHANGE_WORDS_H_
#define VELKCTL_VERBS_CHANGE_WORDS_H_

#include <string>
#include <vector>

#include "velkctl/cli/verbs.h"
#include "velkctl/report/report.h"
#include "velkctl/verbs/change_set.h"

namespace velkctl {

struct RequestedChanges {
    ChangeSet changes{};  // the value of a refused one is empty
    std::vector<Problem> problems{};
};

// Reads "NAME VALUE..." or, if the first word has an "=", any number of "NAME=VALUE". A prefix
// length after an address is a change of the netmask. Reads secrets from their sources, those on
// standard input last and only if there is no problem yet.
RequestedChanges ReadChanges(const Invocation& invocation);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_CHANGE_WORDS_H_
