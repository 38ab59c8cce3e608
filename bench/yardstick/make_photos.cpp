#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "tests/support/photo_maker.h"

// make_photos <directory> <count> <width>x<height> [--seed <n>] [--thumb all] [--sampling 422|444|gray]
//             [--restarts <MCUs>] [-j <processes>]
//
// Photographs as cameras write them: 4:2:0 unless told otherwise, some shot with the camera held upright, three of four
// or all with a thumbnail. The quality gives files as large as those of real scenes of that size, which are less
// smooth. The same arguments make the same bytes.
namespace {

struct order_t {
    std::filesystem::path directory;
    unsigned count = 0;
    unsigned width = 0;
    unsigned height = 0;
    unsigned seed = 1;
    bool all_thumbnails = false;
    test_support::sampling_t sampling = test_support::sampling_t::s420;
    unsigned restart_interval = 0;  // MCUs
    unsigned processes = 1;
};

void make_photo(const order_t& order, unsigned index) {
    using namespace test_support;
    constexpr unsigned orientations[] = {1, 1, 6, 1, 1, 8, 1, 1, 6, 3};
    const photo_t photo{.width = order.width,
                        .height = order.height,
                        .sampling = order.sampling,
                        .quality = 98,
                        .seed = order.seed + index,
                        .restart_interval = order.restart_interval};
    const bool with_thumbnail = order.all_thumbnails || index % 4 != 3;
    char name[32];
    std::snprintf(name, sizeof name, "P%07u.jpg", 1010001 + index);
    write_file(order.directory / name, make_camera_jpeg(photo, orientations[index % 10], with_thumbnail));
}

bool read_arguments(order_t& order, int argc, char** argv) {
    const auto number = [](const char* text) { return static_cast<unsigned>(std::strtoul(text, nullptr, 10)); };
    if (argc < 4 || argc % 2 != 0 || std::sscanf(argv[3], "%ux%u", &order.width, &order.height) != 2) {
        return false;
    }
    order.directory = argv[1];
    order.count = number(argv[2]);
    for (int i = 4; i < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--seed") {
            order.seed = number(argv[i + 1]);
        } else if (option == "-j") {
            order.processes = number(argv[i + 1]);
        } else if (option == "--restarts") {
            order.restart_interval = number(argv[i + 1]);
        } else if (option == "--sampling") {
            const std::string name = argv[i + 1];
            order.sampling = name == "422"   ? test_support::sampling_t::s422
                             : name == "444" ? test_support::sampling_t::s444
                                             : test_support::sampling_t::gray;
        } else if (option == "--thumb") {
            order.all_thumbnails = argv[i + 1] == std::string("all");
        } else {
            return false;
        }
    }
    return order.width >= 16 && order.height >= 16 && order.processes != 0;
}

int make_share(const order_t& order, unsigned first) {
    try {
        for (unsigned i = first; i < order.count; i += order.processes) {
            make_photo(order, i);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_photos: %s\n", error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    order_t order;
    if (!read_arguments(order, argc, argv)) {
        std::fprintf(stderr,
                     "usage: make_photos <directory> <count> <width>x<height> [--seed <n>] [--thumb all] "
                     "[--sampling 422|444|gray] [--restarts <MCUs>] [-j <processes>]\n");
        return 2;
    }
    std::filesystem::create_directories(order.directory);
    for (unsigned i = 0; i < order.processes; ++i) {
        if (fork() == 0) {
            _exit(make_share(order, i));
        }
    }
    int status = 0;
    bool good = true;
    while (wait(&status) > 0) {
        good = good && status == 0;
    }
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
