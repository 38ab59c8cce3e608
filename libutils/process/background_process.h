#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <string_view>

namespace libutils {

// Work in a forked process of its own whose answers come through a descriptor, so that they can be waited for beside
// other things: a window lives on meanwhile.
class background_process_t {
  public:
    enum class state_t {
        running,
        succeeded,
        failed,  // also when it died, or there was no process to be had
    };
    using send_t = std::function<void(std::string_view bytes)>;

    background_process_t() = default;
    ~background_process_t() { end(); }
    background_process_t(const background_process_t&) = delete;
    background_process_t& operator=(const background_process_t&) = delete;

    // Ends what is at work and starts `work`, which gets a way to send bytes and returns whether it succeeded. Whatever
    // else it changes in memory is lost with its process, which ends with this one at the latest.
    void start(const std::function<bool(const send_t& send)>& work);

    // Ends the process, whatever it is at.
    void end();

    // Readable when there is something to receive; -1 when nothing runs.
    [[nodiscard]] int descriptor() const { return descriptor_; }

    // Appends to `bytes` what was sent since, without waiting. All was sent when it is not running any more.
    [[nodiscard]] state_t receive(std::string& bytes);

  private:
    pid_t process_ = -1;
    int descriptor_ = -1;
};

}  // namespace libutils
