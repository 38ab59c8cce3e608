#pragma once

#include <string>
#include <system_error>
#include <vector>

#include "libgr/jpeg/jpegdata.h"

// Turned files of an album's photographs, which get their names all together. They are made in a hidden directory of
// the album, whose own name tells whether they count:
//
//   .taloram-turning-<pid>-<n>/                  not all there yet: goes when its program is gone
//   .taloram-turned-<quarter turns>-<pid>-<n>/   all there: what it still holds is to be put in place
//       photos/<name>                            an empty file for each photograph that is turned
//       size<k>/<name>, thumb/<name>             turned
namespace taloram {

class pending_turn_t {
  public:
    explicit pending_turn_t(std::string album) : album_(std::move(album)) {}
    ~pending_turn_t();
    pending_turn_t(const pending_turn_t&) = delete;
    pending_turn_t& operator=(const pending_turn_t&) = delete;

    // Makes the directory for these photographs. Destroyed without commit() it goes with all it holds.
    [[nodiscard]] std::error_code begin(const std::vector<std::string>& photos);

    // Where the turned file of a photograph that belongs to the album's directory `kind` is to be made.
    [[nodiscard]] std::string path(const std::string& kind, const std::string& photo) const;

    // Brings everything to the disk. From now on it is a turn, by so many quarter turns, that only has to be ended.
    [[nodiscard]] std::error_code commit(unsigned long count);

    [[nodiscard]] bool is_committed() const { return is_committed_; }

    // Puts the files in place, those of photographs whose original is gone excepted. False after a report: the rest
    // then is for the next program.
    [[nodiscard]] bool place() const;

    // After place(): gives up the directory, in one step for whoever looks for turns.
    void end();

  private:
    std::string album_;
    std::string directory_;
    int lock_ = -1;  // that other programs know it by as being worked on
    bool is_committed_ = false;
};

// A turn that another program had committed and did not live to end.
struct left_turn_t {
    std::string directory;
    unsigned long count = 0;          // quarter turns
    std::vector<std::string> photos;  // by name
};

// True when there are such; asked without the write lock it may be a turn that goes on.
[[nodiscard]] bool has_left_turns(const std::string& album);

// Puts the files of turns in place that killed programs left in the album, and removes what they had not committed.
// False, after a report, where not all could be put in place.
[[nodiscard]] bool place_left_turns(const std::string& album, std::vector<left_turn_t>& placed);

// Gives up their directories.
void end_left_turns(const std::string& album, const std::vector<left_turn_t>& placed);

// Both. Whoever writes sizes of an album calls it before, holding its write lock, and writes the pages afterwards.
[[nodiscard]] bool end_left_turns(const std::string& album);

}  // namespace taloram
