#include <algorithm>
#include <filesystem>

#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

// Makes what the targets start from, one directory a target, with the real photographs: make_corpus <directory>
namespace {

using namespace test_support;
using namespace std::string_literals;
using builder_t = exif_builder_t;

// Adds a photograph as a whole or at least with its header, and its EXIF segment where it has one.
void add_photo(const std::string& corpus, blob_t file) {
    static unsigned seeds = 0;
    const auto add = [&](const std::string& target, const blob_t& seed) {
        std::filesystem::create_directories(corpus + "/" + target);
        write_file(corpus + "/" + target + "/seed-" + std::to_string(++seeds), seed);
    };
    if (file.size() <= 16384) {  // larger pictures would take long and show no more
        add("jpeg", file);
        add("coding", file);
    }
    file.resize(std::min<size_t>(file.size(), 65536));
    add("markers", file);
    add("summary", file);
    add("published", file);
    const std::string exif = "Exif\0\0"s;
    const auto found = std::search(file.begin() + 2, file.end(), exif.begin(), exif.end());
    if (found != file.end()) {
        const long length = (found[-2] << 8 | found[-1]) - 2;
        add("exif", blob_t(found, found + std::clamp(length, 0L, file.end() - found)));
    }
}

// A photograph with a maker's note whose sub-directories are one and the same.
blob_t with_maker_note(const std::string& make, const std::string& header) {
    constexpr auto ifd0 = builder_t::ifd0, exif = builder_t::exif;
    const bool motorola = header.find("MM") != std::string::npos;
    const auto start = static_cast<uint32_t>(header.size());
    const uint32_t shared_at = start + 72;
    builder_t main(motorola), shared(motorola), all(motorola);
    main.longs(ifd0, 0x2010, {shared_at}).longs(ifd0, 0x2020, {shared_at}).longs(ifd0, 0x2050, {shared_at});
    main.shorts(ifd0, 0x000D, {1}).shorts(ifd0, 0x1015, {2, 4, 9});
    shared.shorts(ifd0, 0x0301, {77}).shorts(ifd0, 0x0500, {18, 0, 0}).longs(ifd0, 0x0804, {1, 12});
    blob_t note(header.begin(), header.end());
    for (const blob_t& part : {main.directory(ifd0, start), shared.directory(ifd0, shared_at)}) {
        note.insert(note.end(), part.begin(), part.end());
    }
    all.text(ifd0, 0x010F, make).text(ifd0, 0x0110, "Model").bytes(exif, 0x927C, note);
    all.rational(exif, 0x829A, 10, 2500).srational(exif, 0x9204, -2, 6).shorts(exif, 0x9209, {0x5F});
    return make_jpeg({.width = 24, .height = 16, .segments = {{0xE1, all.app1()}}});
}

std::string box(const std::string& type, const std::string& contents) {
    return std::string(3, '\0') + static_cast<char>(8 + contents.size()) + type + contents;
}

// Movies with a place in each form, and a page.
void add_others(const std::string& corpus) {
    const std::string key = "\0\0\0\x2Cmdtacom.apple.quicktime.location.ISO6709"s;
    const std::string keys = box("meta", box("hdlr", "x") + box("keys", "\0\0\0\0\0\0\0\1"s + key));
    const std::string wide = "\0\0\0\1mdat\0\0\0\0\0\0\0\x12xx"s;
    for (const std::string& movie :
         {wide + box("moov", keys), box("moov", box("trak", box("udta", box("loci", "x")))),
          box("ftyp", "qt  ") + box("moov", box("udta", box("\xA9xyz", "\0\x08\x15\xC7+48+011/"s)))}) {
        std::filesystem::create_directories(corpus + "/movies");
        write_file(corpus + "/movies/seed-" + std::to_string(movie.size()), movie);
    }
    write_file(corpus + "/published/page",
               "<!-- x --><A HREF='a%20b?c'><img src=d srcset=\"e 1x, f 2x\"><title></title>"s);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string corpus = argv[argc - 1];
    for (const auto sampling :
         {sampling_t::s444, sampling_t::s422, sampling_t::s440, sampling_t::s420, sampling_t::s411, sampling_t::gray}) {
        add_photo(corpus, make_jpeg({.width = 41, .height = 35, .sampling = sampling}));
        add_photo(corpus, make_jpeg({.width = 41, .height = 35, .sampling = sampling, .progressive = true}));
    }
    add_photo(corpus, make_jpeg({.width = 64, .height = 32, .restart_interval = 1, .segments = {{0xFE, {'a'}}}}));
    add_photo(corpus, make_camera_jpeg({.width = 32, .height = 24}, 6, true));
    add_photo(corpus, with_maker_note("OLYMPUS", "OLYMP\0\1\0"s));
    add_photo(corpus, with_maker_note("OLYMPUS", "OLYMPUS\0II\3\0"s));
    add_photo(corpus, with_maker_note("OLYMPUS", "OLYMPUS\0MM\0\3"s));
    add_photo(corpus, with_maker_note("OM Digital Solutions", "OM SYSTEM\0\0\0II\4\0"s));
    add_photo(corpus, with_maker_note("RICOH", "PENTAX \0II"s));
    add_others(corpus);
    for (const std::string& path : files_below(real_photos())) {
        if (std::filesystem::file_size(path) > 2) {
            add_photo(corpus, read_file(path));
        }
    }
}
