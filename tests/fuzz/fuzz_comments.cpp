#include <filesystem>
#include <string_view>

#include "album/pages/album_pages.h"
#include "album/pages/book_index.h"
#include "album/texts/comment_store.h"
#include "talolib/option.h"
#include "tests/fuzz/fuzz_target.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using namespace taloram;

namespace {

// A book with one album of one photograph, which every input comes to with other texts.
struct book_t {
    book_t() {
        const test_support::blob_t photo = test_support::make_jpeg({.width = 16, .height = 8});
        for (const char* directory : {"/original", "/size0", "/thumb", "/txt"}) {
            std::filesystem::create_directories(album + directory);
        }
        for (const char* directory : {"/original/p.jpg", "/size0/p.jpg", "/thumb/p.jpg"}) {
            test_support::write_file(album + directory, photo);
        }
    }

    const test_support::temp_dir_t dir;
    const std::string album = dir / "album";
};

// What stands in front of the next line with a single "%".
std::string take_text(std::string_view& rest) {
    constexpr std::string_view border = "\n%\n";
    const size_t size = std::min(rest.find(border), rest.size());
    const std::string text(rest.substr(0, size));
    rest.remove_prefix(std::min(size + border.size(), rest.size()));
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const book_t book;
    static const fuzz::silence_t silence;
    talolib::g_option[talolib::option_trace] = 1;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    for (const char* name : {"head.txt", "last.txt", "p.jpg.txt", "count.txt"}) {
        test_support::write_file(text_path(book.album, name), take_text(rest));
    }
    progress_t progress;
    fuzz::require(makehtmlbook(book.dir.path()));
    fuzz::require(makehtml(book.album, progress) && makehtmlzoom(book.album, progress));
    std::string title, head, last;
    loadcommenttxt(book.album, title, head, last);
    fuzz::require(savecommenttxt(book.album, title, head, last));
    std::string comment;
    fuzz::require(loadphotocomment(comment, book.album, "p.jpg") && savephotocomment(comment, book.album, "p.jpg"));
    return 0;
}
