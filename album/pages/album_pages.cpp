#include "album/pages/album_pages.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <list>
#include <optional>
#include <tuple>

#include "album/engine_step.h"
#include "album/pages/active_markup.h"
#include "album/pages/page_frame.h"
#include "album/sizes/reduced_sizes.h"
#include "album/texts/comment_store.h"
#include "album/texts/text_file.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/text/text.h"
#include "shooting_data/exif_summary.h"
#include "shooting_data/photo_header.h"
#include "talolib/option.h"

namespace taloram {

namespace {

using names_t = std::vector<std::string>;

// A photograph as pages name its files.
struct page_photo_t {
    std::string name;
    unsigned long level = 0;  // its top level
    names_t sizes;            // directories of the levels, then of the thumbnail
    names_t zooms;            // zoom pages of level 1 and up

    // A file of the photograph as a page in the album's directory links to it.
    [[nodiscard]] std::string link(unsigned long size) const { return entry_path(sizes[size], name); }

    // What shows level `size`: its zoom page, or the full-size file itself.
    [[nodiscard]] std::string target(unsigned long size) const {
        return size == 0 ? link(0) : entry_path(layout::html, zooms[size - 1]);
    }
};

page_photo_t describe_photo(const std::string& album, const std::string& name) {
    page_photo_t photo{name, getshrinklevel(album, name), {}, {}};
    photo.sizes = level_directories("", photo.level);
    for (unsigned long k = 1; k <= photo.level; ++k) {
        photo.zooms.push_back(zoom_page_name(name, k));
    }
    return photo;
}

void chop_lines(std::list<std::string>& lines) {
    for (std::string& line : lines) {
        talolib::trace(std::cout, line);
        libutils::chop(line);
    }
}

// False, after a report, when a text can't be read.
bool load_texts(page_texts_t& texts, const std::string& album) {
    if (const unread_text_t unread = load_page_texts(texts, album)) {
        report_unread(unread);
        return false;
    }
    chop_lines(texts.head);
    chop_lines(texts.last);
    return true;
}

bool save_album_page(const page_t& page, const std::string& album, const std::string& path,
                     libutils::staging_t staging) {
    const std::error_code failure = page.save(album, path, staging);
    if (failure) {
        libutils::report(path, ": open error, ", failure.message());
    }
    return !failure;
}

bool write_size_links(std::ostream& out, const std::string& album, const page_photo_t& photo) {
    for (unsigned long k = 0; k < photo.level; ++k) {
        const std::string path = entry_path(album, photo.link(k));
        photo_header_t header;
        if (!load_photo_header(header, path)) {
            return false;
        }
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) {
            libutils::report(path, ": ", std::strerror(errno));
            return false;
        }
        const auto kilobytes = (static_cast<uint64_t>(status.st_size) + 1023) / 1024;
        out << "\t<br><a href=\"" << photo.target(k) << "\">" << header.width << "x" << header.height << " ("
            << kilobytes << "k)</a>\n";
    }
    return true;
}

void write_movie(std::ostream& out, const std::string& movie) {
    out << "\t<li>" << movie << "\n\t<br><video controls>\n\t<source src=\"" << entry_path(layout::movie, movie)
        << "\">\n\t</video>\t<p>\n";
}

// False, after a report, when there is a comment and it can't be read.
bool write_photo_comment(std::ostream& out, const std::string& album, const std::string& name) {
    std::optional<std::string> text;
    if (const unread_text_t unread = load_photo_comment(text, album, name)) {
        report_unread(unread);
        return false;
    }
    if (!text) {
        talolib::trace(std::cerr, name, ": loadphotocommentlines() failed.");
    }
    warn_of_active_markup(text_path(album, name), text.value_or(""));
    std::list<std::string> lines = split_lines(text.value_or(""));
    for (std::string& line : lines) {
        libutils::chop(line);
    }
    writephotocomment(out, lines, 1);
    return true;
}

// One photograph of the index. With two sizes its anchor is never closed: the format of the pages is fixed.
bool write_photo(page_t& out, const std::string& album, const page_photo_t& photo) {
    const unsigned long top = photo.level;
    out << "\t<li>" << photo.name << '\n';
    if (!write_size_links(out, album, photo)) {
        return false;
    }
    out << "\t<br>";
    if (top >= 1) {
        out << "<a href=\"" << photo.target(top - 1) << "\">";
    }
    out << "<IMG SRC=\"" << photo.link(top);
    if (top >= 1) {
        out << "\" SRCSET=\"" << photo.link(top) << " 1x," << photo.link(top - 1) << " 2x";
    }
    out << "\" ALIGN=\"left\">" << (top >= 2 ? "</a>" : "") << '\n';
    if (!write_photo_comment(out, album, photo.name)) {
        return false;
    }
    out << "\t<br clear=all>\n";
    const size_t start = out.view().size();
    // A photograph without shooting data has no summary.
    static_cast<void>(write_summary(out, original_path(album, photo.name), true));
    warn_of_active_markup(original_path(album, photo.name), out.view().substr(start));
    out << "\t<p>\n\n";
    return true;
}

bool write_index(const std::string& album, page_texts_t& texts, const std::list<std::string>& movies,
                 const std::list<std::string>& names, std::vector<page_photo_t>& photos, progress_t& progress) {
    page_t out;
    write_page_head(out, texts);
    out << "\n<UL>\n";
    for (const std::string& movie : movies) {
        write_movie(out, movie);
    }
    for (const std::string& name : names) {
        photos.push_back(describe_photo(album, name));
        if (!write_photo(out, album, photos.back())) {
            return false;
        }
        emit_progress(progress, photos.size() - 1, names.size());
    }
    out << "</UL>\n";
    write_page_foot(out, texts);
    return save_album_page(out, album, entry_path(album, layout::index_page), libutils::staging_t::beside);
}

// The contact sheet. The anchor of a photograph with one size is never closed, as in the index.
bool write_list(const std::string& album, page_texts_t& texts, const std::vector<page_photo_t>& photos) {
    page_t out;
    write_page_head(out, texts);
    out << "<br>\n\n";
    for (const page_photo_t& photo : photos) {
        const std::string thumb = photo.link(photo.level + 1);
        out << "<a href=\"" << photo.target(photo.level) << "\"><IMG SRC=\"" << thumb << "\" SRCSET=\"" << thumb
            << " 1x," << photo.link(photo.level) << " 2x\">" << (photo.level != 0 ? "</a>\n" : "");
    }
    write_page_foot(out, texts);
    return save_album_page(out, album, entry_path(album, layout::list_page), libutils::staging_t::beside);
}

bool write_count(const std::string& album, size_t movies, size_t photos) {
    page_t out;
    if (movies != 0) {
        out << movies;
    }
    out << "+" << photos << '\n';
    return save_album_page(out, album, text_path(album, layout::count_text), libutils::staging_t::above);
}

// The page of level `level` (1 or more); its picture links to the next larger size.
bool write_zoom_page(const std::string& album, const page_photo_t& photo, unsigned long level) {
    const std::string path = entry_path(album, entry_path(layout::html, photo.zooms[level - 1]));
    page_t out;
    const std::string above = "../";
    const std::string image = above + photo.link(level);
    write_page_start(out);
    out << "<a href=\"" << (level > 1 ? photo.zooms[level - 2] : above + photo.link(0)) << "\"><IMG SRC=\"" << image
        << "\" SRCSET=\"" << image << " 1x," << above << photo.link(level - 1) << " 2x\"></a>\n";
    write_page_end(out);
    if (out.save(album, path, libutils::staging_t::old_goes_first)) {
        libutils::report(path, ": write open error.");
        return false;
    }
    return true;
}

}  // namespace

bool makehtml(const std::string& album, progress_t& progress) {
    page_texts_t texts;
    std::list<std::string> movies;
    std::list<std::string> names;
    if (!load_texts(texts, album) || !list_if_there(movies, entry_path(album, layout::movie)) ||
        !list_if_there(names, entry_path(album, layout::thumb))) {
        return false;
    }
    std::vector<page_photo_t> photos;
    return write_index(album, texts, movies, names, photos, progress) && write_list(album, texts, photos) &&
           write_count(album, movies.size(), photos.size());
}

bool makehtmlzoom(const std::string& album, progress_t& progress) {
    libutils::mkdir(entry_path(album, layout::html).c_str());
    std::list<std::string> names;
    if (libutils::list_files(names, entry_path(album, layout::thumb))) {
        return false;
    }
    size_t index = 0;
    for (const std::string& name : names) {
        const page_photo_t photo = describe_photo(album, name);
        for (unsigned long level = 1; level <= photo.level; ++level) {
            if (!write_zoom_page(album, photo, level)) {
                return false;
            }
        }
        emit_progress(progress, index++, names.size());
    }
    return true;
}

bool write_pages(const std::string& album, progress_signals_t& progress) {
    const auto held = [&](progress_t& stage) {
        progress_t done;
        done.connect([&](double fraction) {
            stage.emit(fraction);
            std::ignore = progress.goes_on();
        });
        return done;
    };
    progress_t pages = held(progress.pages);
    progress_t zoom_pages = held(progress.zoom_pages);
    return step_done(makehtml(album, pages), "makehtml") && step_done(makehtmlzoom(album, zoom_pages), "makehtmlzoom");
}

bool writelink(std::ostream& out, const std::string& album, const std::vector<std::string>& sd,
               const std::vector<std::string>& zp, const std::string& f) {
    const page_photo_t photo{f, getshrinklevel(album, f), sd, zp};
    // The names may come from before the original was replaced.
    if (photo.level > sd.size() || photo.level > zp.size() + 1) {
        return false;
    }
    const libutils::classic_numbers classic(out);
    return write_size_links(out, album, photo);
}

}  // namespace taloram
