#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace taloram {

// A file of a camera's card.
struct card_file_t {
    std::string directory;
    std::string name;
    uint64_t length = 0;      // bytes
    std::time_t changed = 0;  // the file's date

    [[nodiscard]] std::string path() const;
};

// What is on a card and needs no copy. The list of the camera's catalogues is closed: a file of any other kind counts.
enum class passed_over_t {
    hidden,     // a name that begins with a dot; of a directory, with all that is in it
    empty,      // no bytes
    link,       // or a device, pipe or socket: nothing that the card itself holds
    catalogue,  // a camera's own list of its files, which it makes again
};

struct passed_over_file_t {
    passed_over_t why;
    std::string path;
};

struct card_listing_t {
    std::vector<card_file_t> files;  // by directories and names, in the order of bytes
    std::vector<passed_over_file_t> passed_over;
    std::vector<std::string> beside;  // what of the card was not looked at and holds files, as paths
    bool is_whole = true;             // false when a directory can't be read; the others' files are listed
};

// Lists the files of a card to any depth: of its directories called DCIM, in any case, and where it has none of the
// whole card. Adds to `listing`. A directory that can't be read to its end is reported, and none of its files is
// listed.
void list_card(card_listing_t& listing, const std::string& card);

// True when one of two directories is the other or lies in it, or when that can't be told: what is cleared must not
// hold the copies.
[[nodiscard]] bool is_entangled(const std::string& card, const std::string& book);

// True for what a camera writes about its files under a name of its own.
[[nodiscard]] bool is_catalogue(const std::string& name);

}  // namespace taloram
