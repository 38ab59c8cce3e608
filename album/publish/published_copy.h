#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "libutils/system_error.h"

namespace taloram {

// The bytes of a file that is to be published: hands all of them to `take`, in order, until that fails. Its own
// failures are those of reading.
using take_bytes_t = std::function<std::error_code(std::string_view)>;
using contents_t = std::function<std::error_code(const take_bytes_t& take)>;

// The contents of a regular file, read in blocks.
[[nodiscard]] contents_t contents_of_file(const std::string& path);

// What stands in the file `record_name` of each directory that publishing makes for an album or book. It tells a
// published copy from other directories, and what was published there from what others put beside it.
struct publish_record_t {
    std::string root;             // from this directory to that of the whole copy: ".", "..", "../.."
    std::set<std::string> files;  // published, as paths in this directory
};
constexpr const char* record_name = ".taloram-published";

// no_such_file_or_directory without a record; invalid_argument where the file is something else.
[[nodiscard]] std::error_code load_record(publish_record_t& record, const std::string& directory);

// A directory that files are published into. Paths are relative to it; nothing is read or written through a symbolic
// link in it.
class published_copy_t {
  public:
    explicit published_copy_t(std::string directory) : directory_(std::move(directory)) {}

    [[nodiscard]] std::string path(const std::string& file) const;

    struct failure_t {
        std::error_code unread;     // the contents; what stood under the name stays
        std::error_code unwritten;  // no further file is to be tried
    };

    // Puts a file in place, in one step, unless it has these contents already. Makes its directories.
    [[nodiscard]] failure_t put(const std::string& file, const contents_t& contents);
    [[nodiscard]] failure_t put_text(const std::string& file, std::string_view text);
    [[nodiscard]] std::error_code put_record(const std::string& unit, const publish_record_t& record);

    // Removes a file, and its directories as far as they are empty then. No failure when it is not there.
    [[nodiscard]] std::error_code remove(const std::string& file);

    // True when something bears the name.
    [[nodiscard]] bool has(const std::string& file) const;

  private:
    enum class missing_t { made, refused };
    [[nodiscard]] std::error_code enter(const std::string& directory, missing_t missing);

    std::string directory_;
    std::set<std::string> entered_;
};

}  // namespace taloram
