#pragma once

#include <sys/stat.h>

#include <list>
#include <string>
#include <string_view>

#include "libutils/files/followed_link.h"
#include "libutils/system_error.h"

namespace libutils {

// Where a file may bear a name of its own before it gets its final one.
enum class staging_t {
    beside,  // in the same directory
    above,  // in the directory above, so that no other program's listing shows the name; beside where that is closed or
            // on another file system
    old_goes_first,  // as `above` where there must be one; else the old file goes a moment before the new one takes its
                     // name: for what can be made again, since file systems wait for the disk when a file is replaced
                     // by a rename
};

// A file that is complete under its name or not there at all: whoever looks at the name, also after the program was
// killed, finds the old file or the new one; with staging_t::old_goes_first, for a moment, none.
//
// The bytes go into a file without a name where the file system offers that (O_TMPFILE), else into a hidden temporary;
// commit() puts it in place. Another hard link of the old file keeps the old contents. Destroyed without commit() it
// leaves nothing. A device, pipe or socket under the name is refused and stays.
//
// What a killed program left in the directory where the file is staged goes on the way, at least with open_as_old() and
// unless it is staging_t::old_goes_first.
//
// Every operation returns the first failure: after one the others do nothing and return it again, so that the result of
// the last one is enough. No message.
class new_file_t {
  public:
    // `path` is the final name.
    new_file_t(std::string path, staging_t staging);
    ~new_file_t();
    new_file_t(const new_file_t&) = delete;
    new_file_t& operator=(const new_file_t&) = delete;

    // Starts a file with the usual permissions. A symbolic link under the final name will be replaced.
    std::error_code open();

    // The same for what a user may have arranged: the permissions of the old file are kept, and its owner where that
    // is allowed; a symbolic link is followed as `links` allows, also to where nothing is yet.
    std::error_code open_as_old(const links_t& links = {});

    std::error_code write(std::string_view bytes);

    [[nodiscard]] std::error_code commit();

    // Waits until the bytes are on the disk, so that commit() gives the name to what a power cut leaves whole. Has the
    // disk begin with them, for a flush() that comes later.
    [[nodiscard]] std::error_code flush();
    void begin_flush() const;

    // flush() and commit(), and waits until the name is on the disk, too.
    [[nodiscard]] std::error_code commit_to_disk();

    // A path under which the file can be opened until commit(); "" before open().
    [[nodiscard]] const std::string& current_path() const { return current_path_; }

  private:
    [[nodiscard]] std::string directory_of_path() const;
    [[nodiscard]] std::error_code open_any();
    [[nodiscard]] std::error_code open_unnamed();
    [[nodiscard]] std::error_code open_named();
    [[nodiscard]] std::error_code make_as(const struct stat& old);
    [[nodiscard]] std::error_code place();
    [[nodiscard]] std::error_code link_to(const std::string& name) const;
    [[nodiscard]] std::error_code replace_by_unnamed();
    [[nodiscard]] std::list<std::string> staging_directories() const;
    template <typename Make>
    [[nodiscard]] std::error_code make_temporary(Make make);
    void hold(int descriptor);
    void forget_temporary();

    std::string path_;
    std::string current_path_;
    std::string temporary_;  // "" while the file has no name
    staging_t staging_;
    std::error_code failure_;
    int descriptor_ = -1;
    bool unnamed_ = false;
};

// The whole of a file: open(), or open_as_old() for replace_file(), one write, commit().
[[nodiscard]] std::error_code write_file(const std::string& path, staging_t staging, std::string_view bytes);
[[nodiscard]] std::error_code replace_file(const std::string& path, staging_t staging, std::string_view bytes,
                                           const links_t& links = {});

// Removes the temporaries that killed programs left in `directory`; those of running ones stay, whether they are locked
// as files in the making are, or this process has only given them such a name for a while.
void remove_leftovers(const std::string& directory);

}  // namespace libutils
