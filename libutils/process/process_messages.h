#pragma once

#include <functional>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

// What a process that works for another tells it, over a socket.
namespace libutils {

enum class stream_t : unsigned char { output, error, message };

// What was written, in the order of writing; each message is a part of its own.
using record_t = std::vector<std::pair<stream_t, std::string>>;

// Takes the place of a standard stream of the worker.
class recorder_t : public std::streambuf {
  public:
    recorder_t(record_t& record, stream_t stream, std::function<void()> flushed = {})
        : record_(record), stream_(stream), flushed_(std::move(flushed)) {}

  protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

  private:
    record_t& record_;
    stream_t stream_;
    std::function<void()> flushed_;
};

// Writes to the standard streams of this process what another wrote to its own.
void replay(stream_t stream, const std::string& text);

struct answer_t {
    bool succeeded = false;
    record_t record;
};

// False when the other process is gone.
[[nodiscard]] bool send_all(int socket, const void* data, size_t size);
[[nodiscard]] bool receive_all(int socket, void* data, size_t size);
[[nodiscard]] bool send_answer(int socket, const answer_t& answer);
[[nodiscard]] bool receive_answer(int socket, answer_t& answer);

}  // namespace libutils
