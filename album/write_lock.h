#pragma once

#include <functional>
#include <string>
#include <system_error>

namespace taloram {

// Called about ten times a second while another program writes to `directory`; false gives up waiting. A program sets
// it to tell the user; empty, the engine waits silently.
extern std::function<bool(const std::string& directory)> g_wait_for_writer;

// Lets one program at a time write to an album or to a book's own files. The lock is on the open directory
// (flock(2)), so that nothing is left on the disk and a program that dies gives it up.
//
// One process may hold the lock of a directory several times. Whoever needs two takes that of the album before that of
// the book above it. The workers of a process share its locks and end with it.
class write_lock_t {
  public:
    write_lock_t() = default;
    ~write_lock_t();
    write_lock_t(const write_lock_t&) = delete;
    write_lock_t& operator=(const write_lock_t&) = delete;

    // Waits until no other process holds the lock of `directory` ("" is the current one). operation_canceled when
    // g_wait_for_writer gave up. Where there is no such directory there is nothing to hold, and where the system
    // refuses the lock a line says so once for the program; the work goes on in both.
    [[nodiscard]] std::error_code acquire(const std::string& directory);

  private:
    struct held_t;
    held_t* held_ = nullptr;
};

// The same for what reports its own failures: false after a report.
[[nodiscard]] bool lock_album(write_lock_t& lock, const std::string& directory);

}  // namespace taloram
