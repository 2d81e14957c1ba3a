#include "tests/fuzz/fuzz_inputs.h"
#include "tests/fuzz/fuzz_world.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *input, std::size_t size)
{
    fuzzWorld();
    fuzzStream(input, size);
    return 0;
}
