#include <benchmark/benchmark.h>

#include <algorithm>

#include "libgr/image/pixel_operations.h"
#include "libgr/jpeg/jpeginfo.h"
#include "libgr/jpeg/lossless_turn.h"
#include "libgr/pyramid/reduction.h"
#include "tests/support/photo_maker.h"

// What is done to the pixels of one photograph. Rates are pixels of the photograph a second.
namespace {

using namespace libgr;
using test_support::sampling_t;

constexpr unsigned width = 3000;
constexpr unsigned height = 2000;

jpegdata_t photograph(sampling_t sampling) {
    const test_support::blob_t bytes =
        test_support::make_camera_jpeg({.width = width, .height = height, .sampling = sampling}, 1, true);
    jpegdata_t data;
    if (data.resize(bytes.size())) {
        std::copy(bytes.begin(), bytes.end(), data.begin());
    }
    return data;
}

image2d_t picture(sampling_t sampling) {
    jpegdata_t data = photograph(sampling);
    jpeginfo_t info;
    image2d_t image;
    (void)info.decompress(image, data, 0, false, {});
    return image;
}

// Runs `step` on and on; it returns whether it succeeded.
template <typename Step>
void run(benchmark::State& state, const Step& step) {
    for ([[maybe_unused]] const auto& turn : state) {
        if (!step()) {
            state.SkipWithError("failed");
            break;
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * width * height);
}

void decode(benchmark::State& state, sampling_t sampling) {
    jpegdata_t data = photograph(sampling);
    run(state, [&] {
        jpeginfo_t info;
        image2d_t image;
        return info.decompress(image, data, 0, false, {});
    });
}
BENCHMARK_CAPTURE(decode, color_420, sampling_t::s420);
BENCHMARK_CAPTURE(decode, gray, sampling_t::gray);

void encode(benchmark::State& state, sampling_t sampling) {
    const image2d_t image = picture(sampling);
    run(state, [&] {
        jpeginfo_t info;
        jpegdata_t out;
        return info.compress(out, image, 100, true);
    });
}
BENCHMARK_CAPTURE(encode, color, sampling_t::s420);
BENCHMARK_CAPTURE(encode, gray, sampling_t::gray);

void halve(benchmark::State& state, sampling_t sampling) {
    const image2d_t image = picture(sampling);
    run(state, [&] {
        image2d_t half;
        return scaledown(half, image);
    });
}
BENCHMARK_CAPTURE(halve, color, sampling_t::s420);
BENCHMARK_CAPTURE(halve, gray, sampling_t::gray);

void rotate_pixels(benchmark::State& state) {
    const image2d_t image = picture(sampling_t::s420);
    run(state, [&] {
        image2d_t turned;
        return rotate(static_cast<unsigned long>(state.range(0)), turned, image);
    });
}
BENCHMARK(rotate_pixels)->Arg(1)->Arg(2);

void turn(benchmark::State& state) {
    const jpegdata_t data = photograph(sampling_t::s420);
    run(state, [&] {
        jpegdata_t turned;
        return transform(static_cast<unsigned long>(state.range(0)), turned, data);
    });
}
BENCHMARK(turn)->Arg(0)->Arg(1)->Arg(2);

// Two levels and a thumbnail.
void reduce_photograph(benchmark::State& state, sampling_t sampling) {
    const jpegdata_t data = photograph(sampling);
    run(state, [&] {
        reduction_t reduction;
        reduction.levels.resize(4);
        for (const size_t wanted : {0U, 1U, 3U}) {
            reduction.levels[wanted].wanted = true;
        }
        return reduce(reduction, data);
    });
}
BENCHMARK_CAPTURE(reduce_photograph, color_420, sampling_t::s420);
BENCHMARK_CAPTURE(reduce_photograph, color_422, sampling_t::s422);
BENCHMARK_CAPTURE(reduce_photograph, color_444, sampling_t::s444);
BENCHMARK_CAPTURE(reduce_photograph, gray, sampling_t::gray);

}  // namespace
