#pragma once

#include <optional>
#include <string>
#include <vector>

#include "album/card/card_files.h"
#include "album/progress.h"

namespace taloram {

struct card_order_t {
    std::vector<std::string> cards;
    std::string book;
    std::optional<std::string> album;  // name of one below the book that takes all; empty: those of the days
    bool only_check = false;
};

// Where a file of a card is by the end.
enum class card_fate_t {
    missing,  // not proven to be in the book
    held,     // the book had it
    imported,
    equal,  // to another file of the cards, which was imported
};

struct card_entry_t {
    card_file_t file;
    card_fate_t fate = card_fate_t::missing;
    std::string place;   // path of its copy in the book
    std::string reason;  // why it is missing
};

struct card_result_t {
    std::vector<card_entry_t> files;
    std::vector<passed_over_file_t> passed_over;
    std::vector<std::string> beside;       // as in card_listing_t
    std::vector<std::string> empty_cards;  // on which no file was found
    std::vector<std::string> albums;       // that were made or added to
    bool has_failed = false;               // more than single files; reported

    [[nodiscard]] size_t count(card_fate_t fate) const;

    // True when every file of the cards was compared with its copy, all cards could be read, and nothing failed.
    [[nodiscard]] bool is_proven() const;
};

// Brings what is new on cameras' cards into albums of a book, each file verified, and proves in the end that the book
// has every file: the cards are listed and read once more, and compared with the copies as they come from the disk.
// What the book holds is found by content: names and dates prove nothing. Nothing on a card is changed or removed.
//
// A file that fails does not keep the others from being imported. What a killed program had begun is completed by the
// next one that gets the same files: until an import is done its album has a file that tells so. When the albums can't
// all be listed nothing is imported.
[[nodiscard]] card_result_t import_cards(const card_order_t& order, progress_signals_t& progress);

}  // namespace taloram
