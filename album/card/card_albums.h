#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "album/card/card_files.h"
#include "album/sums/manifest.h"

namespace taloram {

// The sums of a book's albums, each loaded when it is first asked for.
class noted_sums_t {
  public:
    // As manifest_t::load() leaves it; a failure was reported.
    [[nodiscard]] const manifest_t& of(const std::string& album);

    // Another program, or an import, has written to the album.
    void forget(const std::string& album) { manifests_.erase(album); }

  private:
    std::map<std::string, manifest_t> manifests_;
};

// The name that a file of a card has in an album: its own, unless the album writes a text of that name itself.
[[nodiscard]] std::string stored_name(const std::string& name);

// Chooses the albums of a book that new files of a card go into: that of their day, or a named one. Cameras use the
// same names again and again, so where an album has the name of a file, in small or capital letters, the next one is
// taken: "20261121-2", "20261121-3" and so on. The comment of a photograph goes with it, and to no other of that name.
class card_albums_t {
  public:
    card_albums_t(std::string book, std::optional<std::string> name, noted_sums_t& sums)
        : book_(std::move(book)), name_(std::move(name)), sums_(sums) {}

    struct place_t {
        std::string album;                 // path; "" when no album can take the file, which is `reason`
        std::optional<std::string> title;  // for an album of a day
        std::string reason;
    };

    // The album for a file that the book does not hold; the name is taken from then on.
    [[nodiscard]] place_t place(const card_file_t& file);

    // Tells where a file of the card is.
    void settle(const card_file_t& file, const std::string& album) { album_of_[file.path()] = album; }

  private:
    using names_t = std::set<std::wstring>;

    [[nodiscard]] names_t& taken_names(const std::string& album);
    [[nodiscard]] bool is_free(const std::string& album, const card_file_t& file);
    [[nodiscard]] bool would_mix_comments(const std::string& album, const card_file_t& file);
    [[nodiscard]] place_t settled(const std::string& album, const card_file_t& file);

    std::string book_;
    std::optional<std::string> name_;
    noted_sums_t& sums_;
    std::map<std::string, names_t> taken_;         // by album, as paths in it
    std::map<std::string, std::string> album_of_;  // by path on the card
};

}  // namespace taloram
