#include "libutils/files/new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <map>

#include "libutils/files/directory.h"
#include "libutils/files/flush.h"
#include "libutils/files/followed_link.h"
#include "libutils/files/system_path.h"
#include "libutils/files/write_all.h"

namespace libutils {

namespace {

constexpr mode_t usual_permissions = 0666;  // the process's mask takes its part

// A name that no other file of this process had.
std::string next_temporary(const std::string& directory) {
    static unsigned long count = 0;
    return directory + "/" + temporary_prefix + std::to_string(getpid()) + "-" + std::to_string(++count);
}

std::error_code result_of(int returned) {
    return returned == 0 ? std::error_code() : last_error();
}

// A file can be renamed from one directory to the other.
bool is_same_mount(const std::string& a, const std::string& b) {
    struct statx status_a {};
    struct statx status_b {};
    constexpr unsigned wanted = STATX_INO | STATX_MNT_ID;
    return statx(AT_FDCWD, a.c_str(), 0, wanted, &status_a) == 0 &&
           statx(AT_FDCWD, b.c_str(), 0, wanted, &status_b) == 0 && status_a.stx_dev_major == status_b.stx_dev_major &&
           status_a.stx_dev_minor == status_b.stx_dev_minor && status_a.stx_mnt_id == status_b.stx_mnt_id;
}

// Above a directory there may be none for this user's files although they may be in it.
bool is_closed(const std::error_code& failure) {
    return failure == std::errc::cross_device_link || failure == std::errc::permission_denied ||
           failure == std::errc::operation_not_permitted || failure == std::errc::read_only_file_system;
}

// At most once a second in each directory: an album's files are made by the thousand.
void remove_leftovers_now_and_then(const std::string& directory) {
    using clock_t = std::chrono::steady_clock;
    static std::map<std::string, clock_t::time_point> looked_at;
    const auto now = clock_t::now();
    const auto [place, is_new] = looked_at.emplace(directory, now);
    if (is_new || now - place->second >= std::chrono::seconds(1)) {
        place->second = now;
        remove_leftovers(directory);
    }
}

// How file systems and kernels without files that have no name say so; anything else is wrong with a named one too.
bool is_unsupported(const std::error_code& failure) {
    return failure == std::errc::operation_not_supported || failure == std::errc::is_a_directory ||
           failure == std::errc::invalid_argument || failure == std::errc::function_not_supported;
}

std::error_code check_kind(mode_t mode) {
    if (S_ISDIR(mode)) {
        return make_error_code(std::errc::is_a_directory);
    }
    return S_ISREG(mode) ? std::error_code() : make_error_code(refusal_t::not_a_file);
}

// Network file systems and quotas refuse bytes as late as when a descriptor is closed; the own one is still needed.
std::error_code flush_by_closing(int descriptor) {
    const int another = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    return another < 0 ? last_error() : result_of(close(another));
}

}  // namespace

new_file_t::new_file_t(std::string path, staging_t staging) : path_(std::move(path)), staging_(staging) {
}

new_file_t::~new_file_t() {
    forget_temporary();
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::string new_file_t::directory_of_path() const {
    const std::string directory = directory_part(path_);
    return directory.empty() ? "." : directory;
}

void new_file_t::forget_temporary() {
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        temporary_.clear();
    }
}

std::error_code new_file_t::open() {
    if (failure_) {
        return failure_;
    }
    struct stat old {};
    const bool is_replaced = lstat(path_.c_str(), &old) == 0 && !S_ISLNK(old.st_mode);
    failure_ = is_replaced ? check_kind(old.st_mode) : std::error_code();
    return failure_ ? failure_ : failure_ = open_any();
}

std::error_code new_file_t::open_as_old(const links_t& links) {
    if (failure_) {
        return failure_;
    }
    failure_ = follow_link(path_, links);
    if (staging_ != staging_t::old_goes_first) {
        remove_leftovers_now_and_then(staging_directories().front());
    }
    struct stat old {};
    if (failure_ || lstat(path_.c_str(), &old) != 0 || S_ISLNK(old.st_mode)) {
        return open();
    }
    return failure_ = make_as(old);
}

std::error_code new_file_t::make_as(const struct stat& old) {
    if (const std::error_code refused = check_kind(old.st_mode)) {
        return refused;
    }
    // What was made read-only is meant to stay as it is.
    if (access(path_.c_str(), W_OK) != 0) {
        return last_error();
    }
    if (const std::error_code failure = open_any()) {
        return failure;
    }
    // Only the superuser gives files away.
    [[maybe_unused]] const int kept = fchown(descriptor_, old.st_uid, old.st_gid);
    return result_of(fchmod(descriptor_, old.st_mode & ALLPERMS));
}

std::error_code new_file_t::open_any() {
    const std::error_code unnamed = open_unnamed();
    if (!unnamed) {
        return {};
    }
    const std::error_code named = open_named();
    return named && !is_unsupported(unnamed) ? unnamed : named;
}

std::error_code new_file_t::open_unnamed() {
    const int descriptor = ::open(directory_of_path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, usual_permissions);
    if (descriptor < 0) {
        return last_error();
    }
    const std::string current = "/proc/self/fd/" + std::to_string(descriptor);
    if (access(current.c_str(), F_OK) != 0) {
        close(descriptor);
        return make_error_code(std::errc::function_not_supported);
    }
    hold(descriptor);
    current_path_ = current;
    unnamed_ = true;
    return {};
}

// Held as long as the file is open: remove_leftovers() knows by it what is still being written.
void new_file_t::hold(int descriptor) {
    descriptor_ = descriptor;
    static_cast<void>(flock(descriptor_, LOCK_SH | LOCK_NB));
}

// Those to be tried, one after the other. ".." is above where the directory really lies, also behind a symbolic link.
std::list<std::string> new_file_t::staging_directories() const {
    const std::string beside = directory_of_path();
    const std::string above = beside + "/..";
    if (staging_ == staging_t::beside || !is_same_mount(above, beside)) {
        return {beside};
    }
    return {above, beside};
}

// Calls `make(path)` with new names until one succeeds.
template <typename Make>
std::error_code new_file_t::make_temporary(Make make) {
    std::error_code first;
    for (const std::string& directory : staging_directories()) {
        remove_leftovers_now_and_then(directory);
        std::error_code failure;
        do {
            temporary_ = next_temporary(directory);
            failure = make(temporary_);
        } while (failure == std::errc::file_exists);
        if (!failure) {
            return {};
        }
        first = first ? first : failure;
        if (!is_closed(failure)) {
            break;
        }
    }
    temporary_.clear();
    return first;
}

std::error_code new_file_t::open_named() {
    const std::error_code failure = make_temporary([this](const std::string& name) {
        const int descriptor = ::open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, usual_permissions);
        if (descriptor < 0) {
            return last_error();
        }
        hold(descriptor);
        // Between the two calls another program may have taken it for a leftover.
        struct stat status {};
        if (fstat(descriptor, &status) != 0 || status.st_nlink == 0) {
            close(descriptor);
            descriptor_ = -1;
            return make_error_code(std::errc::file_exists);
        }
        return std::error_code();
    });
    current_path_ = temporary_;
    return failure;
}

std::error_code new_file_t::write(std::string_view bytes) {
    return failure_ ? failure_ : failure_ = write_all(descriptor_, bytes);
}

std::error_code new_file_t::link_to(const std::string& name) const {
    return result_of(linkat(AT_FDCWD, current_path_.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW));
}

// link(2) never replaces a file, so it takes a name in between.
std::error_code new_file_t::replace_by_unnamed() {
    if (staging_ == staging_t::old_goes_first) {
        const std::error_code failure = result_of(unlink(path_.c_str()));
        return failure ? failure : link_to(path_);
    }
    const std::error_code failure = make_temporary([this](const std::string& name) { return link_to(name); });
    return failure ? failure : result_of(std::rename(temporary_.c_str(), path_.c_str()));
}

std::error_code new_file_t::place() {
    if (const std::error_code failure = flush_by_closing(descriptor_)) {
        return failure;
    }
    if (!unnamed_) {
        return result_of(std::rename(temporary_.c_str(), path_.c_str()));
    }
    const std::error_code failure = link_to(path_);
    return failure == std::errc::file_exists ? replace_by_unnamed() : failure;
}

std::error_code new_file_t::commit() {
    if (failure_) {
        return failure_;
    }
    failure_ = place();
    if (!failure_) {
        temporary_.clear();
    }
    forget_temporary();
    return failure_;
}

void new_file_t::begin_flush() const {
    if (!failure_) {
        libutils::begin_flush(descriptor_);
    }
}

std::error_code new_file_t::flush() {
    return failure_ ? failure_ : failure_ = libutils::flush(descriptor_);
}

std::error_code new_file_t::commit_to_disk() {
    static_cast<void>(flush());
    const std::error_code failure = commit();
    return failure ? failure : failure_ = libutils::flush(directory_of_path());
}

std::error_code write_file(const std::string& path, staging_t staging, std::string_view bytes) {
    new_file_t file(path, staging);
    file.open();
    file.write(bytes);
    return file.commit();
}

std::error_code replace_file(const std::string& path, staging_t staging, std::string_view bytes, const links_t& links) {
    new_file_t file(path, staging);
    file.open_as_old(links);
    file.write(bytes);
    return file.commit();
}

void remove_leftovers(const std::string& directory) {
    std::list<std::string> names;
    if (list_temporaries(names, directory)) {
        return;
    }
    const std::string own_prefix = temporary_prefix + std::to_string(getpid()) + "-";
    std::erase_if(names, [&](const std::string& name) { return name.starts_with(own_prefix); });
    for (const std::string& name : names) {
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
