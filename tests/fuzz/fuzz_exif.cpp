#include "libgr/exif/app1_marker.h"
#include "tests/fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    const libutils::bytes_t input = fuzz::view_of(data, size);
    libgr::app1_marker_t app1;
    app1.set_app1_buffer(input);
    const libgr::tiff_header_t& tiff = app1.tiff_header;
    if (app1.parse()) {
        fuzz::require(tiff.byteorder != nullptr && tiff.is_intel() != tiff.is_motorola());
    }
    // A view that reaches outside is touched here.
    const auto is_end = [](unsigned char byte) { return byte == 0xD9; };
    for (const auto* part : {&tiff.thumbnail, &tiff.tag_exif_ifd.maker_note, &tiff.ifd_0th, &tiff.ifd_exif}) {
        fuzz::require(part->size() <= size && std::count_if(part->begin(), part->end(), is_end) >= 0);
    }
    app1.clear();
    return 0;
}
