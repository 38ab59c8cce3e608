#pragma once

#include <cstddef>
#include <string>

namespace libutils {

// Paths are byte strings in the locale's multibyte encoding. "/" and "\" both separate, but never as a byte inside
// a multibyte character; bytes that the locale can't convert stand for themselves.

// The last component without its extension: "a/b/c.jpg" gives "c", "x.tar.gz" "x.tar", ".profile" "".
[[nodiscard]] std::string basename(const std::string& path);

// Everything up to and including the last separator, "" without one.
[[nodiscard]] std::string dirname(const std::string& path);

// The last component with its extension.
[[nodiscard]] std::string filename(const std::string& path);

// The path without its trailing "/", "/" itself excepted.
[[nodiscard]] std::string strip_trailing_slash(std::string path);

// 0 when `name` ends with `ext` (given with its dot), ASCII letters compared without regard to case; -1 when `ext` is
// the longer one; else the difference of the first bytes that differ.
[[nodiscard]] int extcasecmp(const std::string& name, const char* ext);

// The path under which `name` exists: as it stands, below "./", below the directories of PATH, or below the
// directory of `program` (may be null), in this order; `name` unchanged when nowhere.
[[nodiscard]] std::string searchpath(const std::string& name, const char* program);

[[nodiscard]] bool is_exist(const std::string& path);
[[nodiscard]] bool is_directory(const std::string& path);

// True when both exist and are one file or directory (device and inode).
[[nodiscard]] bool is_same_file(const std::string& a, const std::string& b);

struct splitpath_t {
    static constexpr size_t part_size = 1024;  // bytes, the terminating NUL included
    char drive[part_size];
    char directory[part_size];
    char filename[part_size];
    char extension[part_size];
};

// Takes a path apart into four arrays of at least splitpath_t::part_size bytes: the drive up to and including the first
// ":", the directory up to and including the last separator, the name, and the extension with its dot. A part that
// does not fit is cut at a whole character.
void splitpath(const char* path, char* drive, char* dir, char* name, char* ext);
void split(splitpath_t& parts, const char* path);

// Joins four parts into `dst`, which holds all of them and a NUL.
void concatpath(char* dst, const char* drive, const char* dir, const char* name, const char* ext);
void concat(char* dst, const splitpath_t& parts);

// Just after the last separator of `path`.
[[nodiscard]] const char* baseptr(const char* path);

// The string forms' results in `dst`, cut at a whole character to at most `n` bytes; a NUL follows where one fits. They
// return the number of bytes written without it.
size_t basename(char* dst, const char* src, size_t n);
size_t dirname(char* dst, const char* src, size_t n);

// Foreign path delimiters into native ones and back. Both kinds are "/" here, so the path stays as it is.
[[nodiscard]] std::string delimconvert(const std::string& path);
[[nodiscard]] std::string deliminvert(const std::string& path);

}  // namespace libutils
