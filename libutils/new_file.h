#pragma once

#include <cstddef>
#include <string>

namespace libutils {

// Where a file may bear a name of its own before it gets its final one.
enum class staging_t {
    beside,  // in the same directory
    above,   // in the directory above, because listings of the file's own directory show every name
};

// A file that is complete under its name or not there at all: whoever looks, also after the program was killed or the
// machine went down, finds the old file or the new one.
//
// The bytes go into a file without a name where the file system offers that (O_TMPFILE), else into a hidden temporary;
// commit() puts it in place. Another hard link of the old file keeps the old contents. Destroyed without commit() it
// leaves nothing. Functions that return false have set errno; nothing here writes a message.
class new_file_t {
  public:
    // `path` is the final name. A symbolic link there is replaced, not followed.
    new_file_t(std::string path, staging_t staging);
    ~new_file_t();
    new_file_t(const new_file_t&) = delete;
    new_file_t& operator=(const new_file_t&) = delete;

    [[nodiscard]] bool open();
    [[nodiscard]] bool write(const void* data, size_t size);

    // Sets the permissions of the file that stands under the final name, where there is one.
    [[nodiscard]] bool take_permissions();

    // Waits until the bytes are on the disk; after commit() the name too.
    [[nodiscard]] bool flush_to_disk();

    [[nodiscard]] bool commit();

    // A path under which the file can be opened until commit(); "" before open().
    [[nodiscard]] const std::string& current_path() const { return current_path_; }

  private:
    [[nodiscard]] bool open_unnamed(const std::string& directory);
    [[nodiscard]] bool open_named();
    [[nodiscard]] bool commit_unnamed();
    [[nodiscard]] std::string staging_directory() const;

    std::string path_;
    std::string current_path_;
    std::string temporary_;  // "" when the file has no name
    staging_t staging_;
    int descriptor_ = -1;
};

// The whole of a file in one write.
[[nodiscard]] bool write_whole_file(const std::string& path, staging_t staging, const void* data, size_t size);

// Removes the temporaries that killed programs left in `directory`; those of running ones stay.
void remove_leftovers(const std::string& directory);

}  // namespace libutils
