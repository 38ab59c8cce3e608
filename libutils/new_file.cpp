#include "libutils/new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <memory>

#include "libutils/directory.h"
#include "libutils/text.h"
#include "libutils/write_all.h"

namespace libutils {

namespace {

constexpr const char* temporary_prefix = ".taloram-new-";
constexpr mode_t usual_permissions = 0666;  // the process's mask takes its part

// The kernel's idea of a directory part: "\" belongs to a name here.
std::string directory_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

// A name that no other file of this process had.
std::string next_temporary(const std::string& directory) {
    static unsigned long count = 0;
    return directory + "/" + temporary_prefix + std::to_string(getpid()) + "-" + std::to_string(++count);
}

// What a symbolic link leads to; anything else is itself.
std::string followed(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real == nullptr ? path : real.get();
}

bool flush_directory(const std::string& directory) {
    const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    // Some file systems have nothing to flush there.
    const bool flushed = fsync(descriptor) == 0 || errno == EINVAL;
    close(descriptor);
    return flushed;
}

void close_keeping_errno(int descriptor) {
    const int error = errno;
    close(descriptor);
    errno = error;
}

}  // namespace

new_file_t::new_file_t(std::string path, staging_t staging) : path_(std::move(path)), staging_(staging) {
}

new_file_t::~new_file_t() {
    forget_temporary();
    if (descriptor_ >= 0) {
        close_keeping_errno(descriptor_);
    }
}

void new_file_t::forget_temporary() {
    if (!temporary_.empty()) {
        const int error = errno;
        unlink(temporary_.c_str());
        temporary_.clear();
        errno = error;
    }
}

bool new_file_t::open() {
    if (!open_unnamed() && !open_named()) {
        return false;
    }
    // Held as long as the file is open: remove_leftovers() knows by it what is still being written.
    static_cast<void>(flock(descriptor_, LOCK_SH | LOCK_NB));
    return true;
}

bool new_file_t::open_as_old() {
    path_ = followed(path_);
    struct stat old {};
    if (stat(path_.c_str(), &old) != 0) {
        return open();
    }
    if (S_ISDIR(old.st_mode)) {
        errno = EISDIR;
        return false;
    }
    // What was made read-only is meant to stay as it is.
    if (access(path_.c_str(), W_OK) != 0 || !open()) {
        return false;
    }
    // Only the superuser gives files away.
    [[maybe_unused]] const int kept = fchown(descriptor_, old.st_uid, old.st_gid);
    return fchmod(descriptor_, old.st_mode & ALLPERMS) == 0;
}

// ".." is above where the directory really lies, also behind a symbolic link, and so on the same file system.
std::string new_file_t::staging_directory() const {
    return directory_of(path_) + (staging_ == staging_t::beside ? "" : "/..");
}

bool new_file_t::open_unnamed() {
    const int descriptor = ::open(directory_of(path_).c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, usual_permissions);
    if (descriptor < 0) {
        return false;
    }
    const std::string current = "/proc/self/fd/" + std::to_string(descriptor);
    if (access(current.c_str(), F_OK) != 0) {
        close(descriptor);
        return false;
    }
    descriptor_ = descriptor;
    current_path_ = current;
    unnamed_ = true;
    return true;
}

bool new_file_t::open_named() {
    const std::string directory = staging_directory();
    do {
        temporary_ = next_temporary(directory);
        descriptor_ = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, usual_permissions);
    } while (descriptor_ < 0 && errno == EEXIST);
    if (descriptor_ < 0) {
        temporary_.clear();
        return false;
    }
    current_path_ = temporary_;
    return true;
}

bool new_file_t::write(std::string_view bytes) {
    return write_all(descriptor_, bytes);
}

bool new_file_t::link_to(const std::string& name) const {
    return linkat(AT_FDCWD, current_path_.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

// link(2) never replaces a file, so it takes a name in between.
bool new_file_t::replace_by_unnamed() {
    if (staging_ == staging_t::none) {
        return unlink(path_.c_str()) == 0 && link_to(path_);
    }
    const std::string directory = staging_directory();
    do {
        temporary_ = next_temporary(directory);
    } while (!link_to(temporary_) && errno == EEXIST);
    return std::rename(temporary_.c_str(), path_.c_str()) == 0;
}

bool new_file_t::commit() {
    bool placed = false;
    if (unnamed_) {
        placed = link_to(path_) || (errno == EEXIST && replace_by_unnamed());
    } else {
        placed = std::rename(temporary_.c_str(), path_.c_str()) == 0;
    }
    if (placed) {
        temporary_.clear();
    }
    forget_temporary();
    return placed;
}

bool new_file_t::commit_to_disk() {
    return fsync(descriptor_) == 0 && commit() && flush_directory(directory_of(path_));
}

bool write_file(const std::string& path, staging_t staging, std::string_view bytes) {
    new_file_t file(path, staging);
    return file.open() && file.write(bytes) && file.commit();
}

bool replace_file(const std::string& path, staging_t staging, std::string_view bytes) {
    new_file_t file(path, staging);
    return file.open_as_old() && file.write(bytes) && file.commit();
}

void remove_leftovers(const std::string& directory) {
    std::list<std::string> names;
    if (!getfiles(names, directory.c_str())) {
        return;
    }
    for (const std::string& name : names) {
        if (stringcmp(name.c_str(), temporary_prefix) != 0) {
            continue;
        }
        const std::string path = directory + "/" + name;
        const int descriptor = open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        if (descriptor >= 0) {
            if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
                unlink(path.c_str());
            }
            close(descriptor);
        }
    }
}

}  // namespace libutils
