#include <filesystem>
#include <random>

#include "tests/fuzz/fuzz_target.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

// Runs a target over photographs with changed bits: change_<target> <bits> <seed> [<directory of findings>]
//
// Small photographs of all layouts with and without restarts; one bit in most runs, more or a changed length in others.
// An input is written to the directory before it is run.
namespace {

using namespace test_support;

std::vector<blob_t> make_photos() {
    std::vector<blob_t> photos;
    for (const auto sampling : {sampling_t::s444, sampling_t::s422, sampling_t::s420, sampling_t::gray}) {
        for (const unsigned interval : {0U, 1U, 3U}) {
            for (const int quality : {30, 92, 100}) {
                photos.push_back(make_jpeg({.width = 40 + interval * 5,
                                            .height = 33,
                                            .sampling = sampling,
                                            .quality = quality,
                                            .seed = interval,
                                            .restart_interval = interval}));
            }
        }
    }
    return photos;
}

}  // namespace

int main(int argc, char** argv) {
    std::ostream out(std::cout.rdbuf());  // targets silence the standard streams
    const auto number = [&](int i) { return i < argc ? std::strtoull(argv[i], nullptr, 10) : 0; };
    const std::vector<blob_t> photos = make_photos();
    std::mt19937_64 random(number(2));
    const auto below = [&random](size_t end) { return static_cast<size_t>(random() % end); };
    uint64_t runs = 0;
    uint64_t bits = 0;
    for (; bits < number(1); ++runs) {
        blob_t photo = photos[below(photos.size())];
        // The header is as interesting as the scan, which is longer.
        const size_t end = below(4) == 0 ? std::min<size_t>(photo.size(), 640) : photo.size();
        size_t changes = below(2) == 0 ? 1 : 1 + below(8);
        for (bits += changes; changes != 0; --changes) {
            photo[below(end)] ^= static_cast<unsigned char>(1U << below(8));
        }
        if (below(8) == 0) {
            const auto at = photo.begin() + static_cast<ptrdiff_t>(below(photo.size()));
            constexpr unsigned char codes[] = {0x00, 0xFF, 0xD0, 0xD9};
            below(2) == 0 ? photo.erase(at) : photo.insert(at, codes[below(std::size(codes))]);
        }
        if (argc > 3) {
            write_file(std::string(argv[3]) + "/changed", photo);
        }
        LLVMFuzzerTestOneInput(photo.data(), photo.size());
    }
    out << bits << " bits changed in " << runs << " runs" << std::endl;
    return 0;
}
