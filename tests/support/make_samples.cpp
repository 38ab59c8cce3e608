#include <exception>
#include <filesystem>
#include <string>

#include "libutils/diagnostics.h"
#include "tests/support/photo_maker.h"

// Writes a small memory card's worth of photographs, a movie and an album's texts, to try the programs on; or a card
// with as many small photographs as wanted, of different sizes and kinds. Another seed makes other pictures.
namespace {

using namespace test_support;

struct sample_t {
    const char* name;
    unsigned width;
    unsigned height;
    sampling_t sampling;
    int orientation;  // -1: no EXIF at all
    bool thumbnail;
};

constexpr sample_t samples[] = {
    {"IMG_0001.JPG", 3000, 2000, sampling_t::s420, 1, true}, {"IMG_0002.JPG", 1600, 1200, sampling_t::s420, 6, true},
    {"IMG_0003.JPG", 2048, 1536, sampling_t::s422, 1, true}, {"IMG_0004.JPG", 1600, 1200, sampling_t::s420, 8, true},
    {"IMG_0005.JPG", 1024, 768, sampling_t::s420, 0, false}, {"IMG_0006.JPG", 800, 600, sampling_t::s444, -1, false},
    {"IMG_0007.JPG", 640, 480, sampling_t::gray, 1, false},
};

// A box of a QuickTime file; at most 255 bytes.
std::string box(const std::string& type, const std::string& content) {
    return std::string(3, '\0') + static_cast<char>(8 + content.size()) + type + content;
}

// A movie without tracks: file type and movie header, 100 units a second, duration 0.
std::string empty_movie() {
    std::string header(100, '\0');
    header[15] = 100;
    header[21] = header[24] = 1;                     // rate and volume 1.0
    header[37] = header[53] = 1, header[68] = 0x40;  // unit matrix
    header[99] = 1;                                  // next track
    return box("ftyp", std::string("qt  \0\0\0\0qt  ", 12)) + box("moov", box("mvhd", header));
}

blob_t make_photo(const sample_t& sample, unsigned seed) {
    const photo_t photo{.width = sample.width, .height = sample.height, .sampling = sample.sampling, .seed = seed};
    const auto orientation = static_cast<unsigned>(sample.orientation);
    return sample.orientation < 0 ? make_jpeg(photo) : make_camera_jpeg(photo, orientation, sample.thumbnail);
}

void write_samples(const std::string& directory) {
    unsigned seed = 0;
    for (const sample_t& sample : samples) {
        write_file(directory + "/" + sample.name, make_photo(sample, ++seed));
    }
    write_file(directory + "/MVI_0008.MOV", empty_movie());
}

// Some photographs, and the movie, have more bytes than their pictures need, so that copying them takes its time.
void write_small_samples(const std::string& directory, unsigned count, unsigned seed) {
    constexpr size_t rest = 100'000;  // bytes
    constexpr unsigned shrunk = 6;    // times
    constexpr unsigned widths = 100;  // bounded, so that each photograph takes the same time
    constexpr size_t digits = 4;      // as cameras count, and more for more
    for (unsigned i = 0; i < count; ++i) {
        sample_t sample = samples[i % std::size(samples)];
        sample.width = sample.width / shrunk + i % widths;
        sample.height /= shrunk;
        blob_t jpeg = make_photo(sample, seed + i);
        jpeg.resize(jpeg.size() + (i % 5 == 0 ? rest + seed : 0), 'x');
        const std::string number = std::to_string(i + 1);
        const std::string zeros(number.size() < digits ? digits - number.size() : 0, '0');
        write_file(directory + "/IMG_" + zeros + number + ".JPG", jpeg);
    }
    write_file(directory + "/MVI_9999.MOV", empty_movie() + std::string(30 * rest + seed, 'x'));
    write_file(directory + "/IMG_0001.JPG.txt", std::string("The harbour at noon.\r\n"));
}

unsigned to_number(const char* text) {
    return static_cast<unsigned>(std::stoul(text));
}

void write_texts(const std::string& directory) {
    const std::string title = "A day by the sea\r\n";
    write_file(directory + "/head.txt", title + title + "The first boat left at ten.\r\nWe stayed until dusk.\r\n");
    write_file(directory + "/last.txt", std::string("More next summer.\r\n"));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 4 || argv[1][0] == '-') {
        libutils::report("usage: make_samples <directory> [<number of small photographs> [<seed>]]");
        return 2;
    }
    try {
        std::filesystem::create_directory(argv[1]);
        if (argc == 2) {
            write_samples(argv[1]);
        } else {
            write_small_samples(argv[1], to_number(argv[2]), argc == 3 ? 1 : to_number(argv[3]));
        }
        write_texts(argv[1]);
    } catch (const std::exception& e) {
        libutils::report(e.what());
        return 1;
    }
    return 0;
}
