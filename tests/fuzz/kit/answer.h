// answer.h - what a get is to answer.
#ifndef TESTS_FUZZ_KIT_ANSWER_H_
#define TESTS_FUZZ_KIT_ANSWER_H_

#include <string>

namespace fuzz {

struct Answer {
    bool succeeds;
    std::string bytes;  // what the data begin with; the others are zero
};

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_ANSWER_H_
