#include "libgr/pyramid/reduction.h"
#include "tests/fuzz/fuzz_target.h"

using namespace libgr;

// A photograph decoded and encoded both ways: with coding of our own the bytes are libjpeg's, or there are none.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    jpegdata_t file;
    file.setvector(fuzz::view_of(data, size), "P");
    const reduction_t order{static_cast<int>(size % 101), {{true, true, {}}, {true, false, {}}}, false};
    reduction_t own = order;
    if (!reduce(own, file, coding_t::own)) {
        return 0;
    }
    reduction_t libjpegs = order;
    fuzz::require(reduce(libjpegs, file, coding_t::libjpeg));
    for (size_t i = 0; i < order.levels.size(); ++i) {
        const jpegdata_t& left = own.levels[i].stream;
        const jpegdata_t& right = libjpegs.levels[i].stream;
        fuzz::require(std::equal(left.begin(), left.end(), right.begin(), right.end()));
    }
    return 0;
}
