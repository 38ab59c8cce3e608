#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/lossless_turn.h"
#include "libgr/pyramid/reduction.h"
#include "tests/fuzz/fuzz_target.h"

using namespace libgr;

namespace {

// What the engine does with a picture it has decoded. The quick way must make the same bytes.
void halve_and_encode(jpeginfo_t& info, const image2d_t& image, const jpegdata_t& file) {
    fuzz::require(image.holds_window() && image.window.width == info.width && image.window.height == info.height);
    reduction_t reduction{80, {2, {true, true, {}}}};
    const bool reduced = reduce(reduction, file);
    image2d_t half = image;
    for (const auto& level : reduction.levels) {
        fuzz::require(scaledown(half, half));
        jpegdata_t encoded;
        const bool made = info.compress(encoded, half, reduction.quality, true);
        fuzz::require(made == (half.window.width != 0 && half.window.height != 0));
        const libutils::bytes_t& quick = level.stream;
        fuzz::require(!reduced || std::equal(encoded.begin(), encoded.end(), quick.begin(), quick.end()));
        jpeginfo_t again;
        fuzz::require(!made || (again.analyze_markers(encoded) && again.width == half.window.width));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    const libutils::bytes_t input = fuzz::view_of(data, size);
    jpegdata_t file;
    file.setvector(input, "P");
    jpeginfo_t info;
    const bool has_header = info.analyze_markers(file);
    // Large pictures take long: one in sixteen, told by the size of its file, undergoes one of the four steps.
    const bool large = info.width * info.height > 1'000'000;
    const auto wanted = [&](unsigned long step) { return !large || step == size % 64; };
    jpeginfo_t decoded;
    image2d_t image;
    if (wanted(0) && decoded.decompress(image, file, 0, false, {})) {
        fuzz::require(has_header);
        halve_and_encode(decoded, image, file);
    }
    image.clear();
    for (unsigned long count = 1; count <= 3; ++count) {
        if (!wanted(count)) {
            continue;
        }
        jpegdata_t turned;
        if (transform(count, turned, file)) {
            jpeginfo_t again;
            fuzz::require(again.analyze_markers(turned));
            fuzz::require(again.width == (count == 2 ? info.width : info.height));
        }
    }
    return 0;
}
