#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "bench/yardstick/levels.h"
#include "libutils/process/memory.h"
#include "shooting_data/photo_header.h"

// limit [-j <processes>] [-r <quarter turns>] [--rotate-only] <photographs> <output>
//
// The pixel work of an import, bare: level 0 (a copy, or turned by -r), the levels below at quality 100, and the
// thumbnail, of every photograph of a directory. It arranges libjpeg's work as an import could at best, all levels in
// one pass, and does nothing else: no checks, no safety, no pages. Only the loops over rows, a twentieth of the time,
// are the programs' own. An error ends it.
namespace {

namespace fs = std::filesystem;
using yardstick::bytes_t;
using yardstick::stream_t;

struct order_t {
    unsigned processes = 1;
    unsigned turns = 0;
    bool rotate_only = false;
    fs::path from;
    fs::path to;
};

[[noreturn]] void fail(const std::string& subject) {
    std::perror(subject.c_str());
    std::_Exit(EXIT_FAILURE);
}

void write_file(const fs::path& path, bytes_t bytes) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    // The kernel is quicker when it knows how much will come; not every file system can be told.
    static_cast<void>(posix_fallocate(file, 0, static_cast<off_t>(bytes.size())));
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written <= 0) {
            fail(path);
        }
        bytes = bytes.subspan(static_cast<size_t>(written));
    }
    close(file);
}

unsigned level_count(const taloram::photo_header_t& header) {
    unsigned count = 0;
    while (header.width >> count > 1024 || header.height >> count > 768) {
        ++count;
    }
    return count;
}

fs::path size_directory(const order_t& order, unsigned level) {
    return order.to / ("size" + std::to_string(level));
}

void write_thumbnail(const fs::path& path, const taloram::photo_header_t& header, unsigned turns) {
    const bytes_t thumbnail(header.thumbnail.begin(), header.thumbnail.size());
    const auto count = static_cast<unsigned>((turns + taloram::quarter_turns(header.orientation())) % 4);
    if (count == 0) {
        write_file(path, thumbnail);
        return;
    }
    stream_t turned(2 * thumbnail.size());
    yardstick::turn(turned, thumbnail, count);
    write_file(path, turned.bytes());
}

void make_sizes(const order_t& order, const fs::path& name) {
    const std::string path = order.from / name;
    libgr::jpegdata_t data;
    taloram::photo_header_t header;
    if (!data.load(path.c_str()) || !taloram::read_photo_header(header, data)) {
        fail(path);
    }
    taloram::read_exif(header);
    bytes_t level0(data.begin(), data.size());
    stream_t turned(level0.size() * 9 / 8);
    if (order.turns != 0) {
        yardstick::turn(turned, level0, order.turns);
        level0 = turned.bytes();
    }
    write_file(size_directory(order, 0) / name, level0);
    if (order.rotate_only) {
        return;
    }
    const bool makes_thumbnail = header.thumbnail.empty();
    const unsigned count = level_count(header);
    if (count != 0 || makes_thumbnail) {
        const auto levels = yardstick::make_levels(level0, count, makes_thumbnail);
        for (unsigned k = 1; k <= count; ++k) {
            fs::create_directory(size_directory(order, k));
            write_file(size_directory(order, k) / name, levels[k - 1].bytes());
        }
        if (makes_thumbnail) {
            write_file(order.to / "thumb" / name, levels.back().bytes());
        }
    }
    if (!makes_thumbnail) {
        write_thumbnail(order.to / "thumb" / name, header, order.turns);
    }
}

order_t read_arguments(int argc, char** argv) {
    order_t order;
    int option = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--rotate-only") {
            order.rotate_only = true;
        } else if ((argument == "-j" || argument == "-r") && i + 1 < argc) {
            const auto value = static_cast<unsigned>(std::strtoul(argv[++i], nullptr, 10));
            (argument == "-j" ? order.processes : order.turns) = value;
        } else if (option++ < 2) {
            (option == 1 ? order.from : order.to) = argument;
        }
    }
    if (option != 2 || order.processes == 0 || order.turns > 3) {
        std::fprintf(stderr, "usage: limit [-j <processes>] [-r <0 to 3>] [--rotate-only] <photographs> <output>\n");
        std::exit(2);
    }
    return order;
}

}  // namespace

int main(int argc, char** argv) {
    libutils::keep_freed_memory();
    const order_t order = read_arguments(argc, argv);
    std::vector<fs::path> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(order.from)) {
        if (entry.path().extension() == ".jpg") {
            names.push_back(entry.path().filename());
        }
    }
    std::sort(names.begin(), names.end());
    fs::create_directories(order.to / "thumb");
    fs::create_directories(size_directory(order, 0));

    // The next photograph that no process has taken.
    void* const shared =
        mmap(nullptr, sizeof(std::atomic<size_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto& next = *new (shared) std::atomic<size_t>(0);
    for (unsigned i = 1; i < order.processes && fork() != 0; ++i) {
    }
    for (size_t i = next++; i < names.size(); i = next++) {
        make_sizes(order, names[i]);
    }
    int status = 0;
    bool good = true;
    while (wait(&status) > 0) {
        good = good && status == 0;
    }
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
