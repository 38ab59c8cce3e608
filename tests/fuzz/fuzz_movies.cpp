#include "album/publish/movie_place.h"
#include "tests/fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const libutils::bytes_t input = fuzz::view_of(data, size);
    static_cast<void>(taloram::names_a_place({input.begin(), input.size()}));
    return 0;
}
