// One fuzzer: FUZZ_INPUT is the function that gets its inputs.

#include "tests/fuzz/fuzz_inputs.h"
#include "tests/fuzz/fuzz_world.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, std::size_t size)
{
    fuzzWorld();
    FUZZ_INPUT(input, size);
    return 0;
}
