// bytes_mutator.cpp - leaves all changes to the fuzzer: for a record in which every byte counts.
#include <cstddef>
#include <cstdint>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t max_size);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t max_size,
                                          unsigned /*seed*/) {
    return LLVMFuzzerMutate(data, size, max_size);
}
