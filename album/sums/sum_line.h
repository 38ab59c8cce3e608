#pragma once

#include <optional>
#include <string>
#include <string_view>

// The lines of a file of sums, as sha256sum(1) writes and checks them (GNU coreutils, "cksum general options"):
//
//   <sum>  <path>              <sum> *<path>              SHA256 (<path>) = <sum>
//   <sum> <path>               in a file whose first line is such
//
// In the path of a line that begins with "\" the characters "\", LF and CR are written "\\", "\n" and "\r".
namespace taloram {

struct sum_line_t {
    std::string path;
    std::string sum;  // SHA-256 as 64 lower-case hexadecimal digits
};

// Reads the lines of one file, in their order.
class sum_line_reader_t {
  public:
    // A line without its line end; nothing when it is not as above.
    [[nodiscard]] std::optional<sum_line_t> read(std::string_view line);

  private:
    [[nodiscard]] std::optional<sum_line_t> read_sum_first(std::string_view line);

    std::optional<bool> has_mode_;  // what stands before the path: a blank and " " or "*", or the blank alone
};

// The first of the forms, with its line end.
[[nodiscard]] std::string written_sum_line(const sum_line_t& line);

}  // namespace taloram
