#pragma once

#include <glibmm/dispatcher.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#include "viewer/load_picture.h"

namespace talovue {

// Loads pictures in a thread, so that the window goes on meanwhile. Everything that reads files, whose buffers have
// plain counts, lives and dies in that thread; what comes out of it are plain pixels and texts that are shared with
// nothing. The rest of the program must not read photographs while there is a loader.
class picture_loader_t {
  public:
    struct result_t {
        picture_request_t request;
        loaded_picture_t picture;
    };

    picture_loader_t();
    ~picture_loader_t();  // waits for the picture that is at work
    picture_loader_t(const picture_loader_t&) = delete;
    picture_loader_t& operator=(const picture_loader_t&) = delete;

    // Loads these pictures, the first one first, in place of all that waits from earlier calls. One that is at work
    // comes to its end; what is at work or done already is not loaded again.
    void request(std::vector<picture_request_t> wanted);

    // The next finished picture; false when there is none. Called after signal_loaded().
    [[nodiscard]] bool take(result_t& result);

    // In the main loop, after one or more pictures were finished.
    [[nodiscard]] Glib::Dispatcher& signal_loaded() { return loaded_; }

  private:
    void work();

    Glib::Dispatcher loaded_;
    std::mutex lock_;  // of all that follows
    std::condition_variable wake_;
    std::deque<picture_request_t> waiting_;
    std::vector<picture_request_t> at_work_;  // one at the most
    std::deque<result_t> finished_;
    bool stop_ = false;
    std::thread thread_;
};

}  // namespace talovue
