#pragma once

#include <glibmm/main.h>

#include <functional>
#include <string>
#include <vector>

#include "album/held_files.h"
#include "libutils/process/background_process.h"

namespace taloram {

// Looks which files of a directory the albums of a book seem to have (album/held_files.h), in a process of its own
// beside the main loop.
class held_search_t : public sigc::trackable {
  public:
    struct outcome_t {
        bool is_whole = false;  // the book was searched to its end
        std::string reason;  // else the innermost line about it, which is written nowhere else; "" where there is none
    };
    using ended_t = std::function<void(const outcome_t& outcome)>;

    // `found` gets the files as they are found, `ended` comes last.
    held_search_t(held_file_t found, ended_t ended);

    // Ends a search that is under way; of that nothing is told any more, nor of one for no names.
    void start(const std::string& directory, const std::vector<std::string>& names, const std::string& book);

  private:
    void tell(const std::string& record);
    [[nodiscard]] bool receive(Glib::IOCondition condition);

    held_file_t found_;
    ended_t ended_;
    libutils::background_process_t process_;
    std::string received_;  // not yet told
    std::string reason_;
    sigc::connection on_receive_;
};

}  // namespace taloram
