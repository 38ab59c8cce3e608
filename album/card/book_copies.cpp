#include "album/card/book_copies.h"

#include <algorithm>
#include <map>

#include "album/album_layout.h"
#include "album/sums/checksum.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/path.h"

namespace taloram {

bool book_copies_t::load(const std::string& book, const std::vector<std::string>& cards) {
    const bool is_whole = list_book_files(files_, book);
    std::map<std::string, bool> lies_on_card;
    std::erase_if(files_, [&](const book_file_t& file) {
        const std::string directory = entry_path(file.album, file.kind);
        const auto [found, is_new] = lies_on_card.try_emplace(directory);
        if (is_new) {
            found->second = std::any_of(cards.begin(), cards.end(),
                                        [&](const std::string& card) { return is_entangled(card, directory); });
        }
        return found->second;
    });
    for (const book_file_t& file : files_) {
        contents_.add(file.length);
    }
    held_ = files_.size();
    return is_whole;
}

std::set<std::string> book_copies_t::albums() const {
    std::set<std::string> albums;
    for (const book_file_t& file : files_) {
        albums.insert(file.album);
    }
    return albums;
}

void book_copies_t::add(book_file_t file) {
    contents_.add(file.length);
    files_.push_back(std::move(file));
}

bool book_copies_t::is_copy(const std::string& path, std::string& sum, const book_file_t& copy) {
    if (libutils::is_same_file(path, copy.path())) {
        return false;
    }
    if (const std::optional<std::string> noted = sums_.of(copy.album).sum_of(copy.path_in_album())) {
        if (sum.empty() && sha256_of_file(sum, path, read_from_t::anywhere)) {
            return false;
        }
        if (sum == *noted) {
            return true;
        }
    }
    return libutils::same_contents(path.c_str(), copy.path().c_str());
}

std::optional<size_t> book_copies_t::find(const card_file_t& file) {
    std::string sum;
    for (const size_t index : like(file)) {
        if (is_copy(file.path(), sum, files_[index])) {
            return index;
        }
    }
    return std::nullopt;
}

}  // namespace taloram
