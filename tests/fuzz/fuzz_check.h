#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the process when the condition does not hold, so that a fuzzer keeps the input.
inline void fuzzCheck(bool condition, const char *what)
{
    if (condition)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}
