#include "album/card/card_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <list>

#include "album/album_layout.h"
#include "libutils/diagnostics.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

// Canon's "M0100.CTG" for each hundred of pictures; the list of files and the mark of the card that Nikon's cameras
// write. Movies' thumbnails (.THM), small movies (.LRV), sounds and raw data are files like others.
constexpr const char* catalogue_extension = ".ctg";
constexpr const char* catalogue_names[] = {"nc_fllst.dat", "nikon001.dsc"};

std::error_code list_names(std::vector<std::string>& names, const std::string& directory) {
    std::list<std::string> directories;
    std::list<std::string> others;
    std::error_code failure = libutils::list_directories(directories, directory);
    if (!failure) {
        failure = libutils::list_files(others, directory);
    }
    if (!failure) {
        others.merge(directories);
        names.assign(others.begin(), others.end());
    }
    return failure;
}

class walk_t {
  public:
    explicit walk_t(card_listing_t& listing) : listing_(listing) {}

    // Paths grow with every level, so that the system's limit on their length bounds the depth.
    void visit(const std::string& directory) {
        std::vector<std::string> names;
        if (const std::error_code failure = list_names(names, directory)) {
            fail(directory, failure);
            return;
        }
        for (const std::string& name : names) {
            visit_entry(directory, name);
        }
    }

  private:
    void fail(const std::string& path, const std::error_code& failure) {
        libutils::report(libutils::printable(path), ": can't be read, ", failure.message());
        listing_.is_whole = false;
    }

    void visit_entry(const std::string& directory, const std::string& name) {
        const std::string path = entry_path(directory, name);
        struct stat status {};
        if (name.front() == '.') {
            pass_over(passed_over_t::hidden, path);
        } else if (lstat(path.c_str(), &status) != 0) {
            fail(path, libutils::last_error());
        } else if (S_ISDIR(status.st_mode)) {
            visit(path);
        } else if (!S_ISREG(status.st_mode)) {
            pass_over(passed_over_t::link, path);
        } else if (status.st_size == 0) {
            pass_over(passed_over_t::empty, path);
        } else if (is_catalogue(name)) {
            pass_over(passed_over_t::catalogue, path);
        } else {
            listing_.files.push_back({directory, name, static_cast<uint64_t>(status.st_size), status.st_mtime});
        }
    }

    void pass_over(passed_over_t why, const std::string& path) { listing_.passed_over.push_back({why, path}); }

    card_listing_t& listing_;
};

bool holds_files(const std::string& directory, const std::string& name) {
    card_listing_t found;
    struct stat status {};
    const std::string path = entry_path(directory, name);
    if (name.front() == '.' || lstat(path.c_str(), &status) != 0) {
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        walk_t(found).visit(path);
        return !found.files.empty() || !found.is_whole;
    }
    return S_ISREG(status.st_mode) && status.st_size > 0 && !is_catalogue(name);
}

}  // namespace

std::string card_file_t::path() const {
    return entry_path(directory, name);
}

bool is_catalogue(const std::string& name) {
    return libutils::extcasecmp(name, catalogue_extension) == 0 ||
           std::any_of(std::begin(catalogue_names), std::end(catalogue_names),
                       [&](const char* catalogue) { return libutils::equals_nocase(name, catalogue); });
}

bool is_entangled(const std::string& card, const std::string& book) {
    const std::string a = libutils::real_directory(card);
    const std::string b = libutils::real_directory(book);
    return a.empty() || b.empty() || a.starts_with(b) || b.starts_with(a);
}

void list_card(card_listing_t& listing, const std::string& card) {
    std::vector<std::string> names;
    const auto is_pictures = [&](const std::string& name) {
        return libutils::equals_nocase(name, "DCIM") && libutils::is_directory(entry_path(card, name));
    };
    // Where this listing fails, that of the walk does too.
    const bool has_pictures = !list_names(names, card) && std::any_of(names.begin(), names.end(), is_pictures);
    if (!has_pictures) {
        walk_t(listing).visit(card);
        return;
    }
    for (const std::string& name : names) {
        if (is_pictures(name)) {
            walk_t(listing).visit(entry_path(card, name));
        } else if (holds_files(card, name)) {
            listing.beside.push_back(entry_path(card, name));
        }
    }
}

}  // namespace taloram
