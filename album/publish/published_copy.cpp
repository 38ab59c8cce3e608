#include "album/publish/published_copy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "album/album_layout.h"
#include "libutils/files/directory.h"
#include "libutils/files/new_file.h"
#include "libutils/files/open_file.h"
#include "libutils/files/read_file.h"
#include "libutils/files/system_path.h"

namespace taloram {

namespace {

constexpr size_t block_size = size_t{256} << 10;        // bytes
constexpr uint64_t longest_record = uint64_t{1} << 30;  // bytes
constexpr std::string_view first_line = "Readers' copy of an album or book, made by taloram.\n";

// A regular file, read from its beginning on.
class file_blocks_t {
  public:
    explicit file_blocks_t(const std::string& path, int flags = 0) : file_(path, flags) {
        struct stat status {};
        failure_ = file_.query(status);
        if (!failure_ && !S_ISREG(status.st_mode)) {
            failure_ = libutils::refusal_t::not_a_file;
        }
        size_ = static_cast<uint64_t>(status.st_size);
    }

    [[nodiscard]] const std::error_code& failure() const { return failure_; }
    [[nodiscard]] uint64_t size() const { return size_; }

    // The next `count` bytes, fewer only at the end of the file.
    [[nodiscard]] std::error_code read(std::string_view& bytes, size_t count) {
        block_.resize(std::max(block_.size(), count));
        const ssize_t got = file_.read_at(block_.data(), count, at_);
        if (got < 0) {
            return libutils::last_error();
        }
        at_ += got;
        bytes = {block_.data(), static_cast<size_t>(got)};
        return {};
    }

  private:
    libutils::open_file_t file_;
    std::error_code failure_;
    uint64_t size_ = 0;
    off_t at_ = 0;
    std::vector<char> block_;
};

// True when the file has just these bytes. `unread` is the failure of the contents.
bool has_contents(const std::string& path, const contents_t& contents, std::error_code& unread) {
    file_blocks_t old(path, O_NOFOLLOW);
    if (old.failure()) {
        return false;
    }
    bool is_equal = true;
    const auto compare = [&](std::string_view bytes) {
        while (is_equal && !bytes.empty()) {
            std::string_view other;
            const std::error_code failure = old.read(other, std::min(bytes.size(), block_size));
            is_equal = !failure && !other.empty() && bytes.starts_with(other);
            bytes.remove_prefix(is_equal ? other.size() : 0);
        }
        return is_equal ? std::error_code() : make_error_code(std::errc::operation_canceled);
    };
    const std::error_code failure = contents(compare);
    std::string_view rest;
    unread = is_equal ? failure : std::error_code();
    return is_equal && !failure && !old.read(rest, 1) && rest.empty();
}

// A path in a copy as it is recorded: no way out, and on one line.
bool is_recordable(std::string_view path) {
    while (!path.empty()) {
        const size_t slash = std::min(path.find('/'), path.size());
        const std::string name(path.substr(0, slash));
        if (!is_plain_name(name) || name.find('\n') != std::string::npos) {
            return false;
        }
        path.remove_prefix(std::min(slash + 1, path.size()));
    }
    return true;
}

}  // namespace

contents_t contents_of_file(const std::string& path) {
    return [path](const take_bytes_t& take) {
        file_blocks_t file(path);
        if (file.failure()) {
            return file.failure();
        }
        uint64_t read = 0;
        for (std::string_view bytes; true; read += bytes.size()) {
            if (const std::error_code failure = file.read(bytes, block_size)) {
                return failure;
            }
            if (bytes.empty()) {
                break;
            }
            if (const std::error_code failure = take(bytes)) {
                return failure;
            }
        }
        return read == file.size() ? std::error_code() : make_error_code(std::errc::io_error);
    };
}

std::error_code load_record(publish_record_t& record, const std::string& directory) {
    std::string text;
    if (const std::error_code failure = libutils::read_file(text, entry_path(directory, record_name), longest_record)) {
        return failure;
    }
    std::string_view rest = text;
    const auto take_line = [&rest] {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        return std::string(line);
    };
    if (!rest.starts_with(first_line)) {
        return make_error_code(std::errc::invalid_argument);
    }
    rest.remove_prefix(first_line.size());
    record.root = take_line();
    record.files.clear();
    while (!rest.empty()) {
        std::string file = take_line();
        if (!file.empty() && is_recordable(file)) {
            record.files.insert(std::move(file));
        }
    }
    return {};
}

std::string published_copy_t::path(const std::string& file) const {
    return entry_path(directory_, file);
}

bool published_copy_t::has(const std::string& file) const {
    struct stat status {};
    return lstat(path(file).c_str(), &status) == 0;
}

std::error_code published_copy_t::enter(const std::string& directory, missing_t missing) {
    if (directory.empty() || entered_.contains(directory)) {
        return {};
    }
    if (const std::error_code failure = enter(libutils::parent_directory(directory), missing)) {
        return failure;
    }
    const std::string name = path(directory);
    struct stat status {};
    if (missing == missing_t::made && mkdir(name.c_str(), 0777) != 0 && errno != EEXIST) {
        return libutils::last_error();
    }
    if (lstat(name.c_str(), &status) != 0) {
        return libutils::last_error();
    }
    if (!S_ISDIR(status.st_mode)) {
        return S_ISLNK(status.st_mode) ? make_error_code(libutils::refusal_t::leads_out)
                                       : make_error_code(std::errc::not_a_directory);
    }
    libutils::remove_leftovers(name);
    entered_.insert(directory);
    return {};
}

published_copy_t::failure_t published_copy_t::put(const std::string& file, const contents_t& contents) {
    const std::string name = path(file);
    std::error_code unread;
    std::error_code unwritten = enter(libutils::parent_directory(file), missing_t::made);
    if (unwritten || has_contents(name, contents, unread) || unread) {
        return {unread, unwritten};
    }
    libutils::new_file_t out(name, libutils::staging_t::beside);
    unwritten = out.open();
    if (!unwritten) {
        unread = contents([&](std::string_view bytes) { return unwritten = out.write(bytes); });
    }
    if (unwritten || unread) {
        return {unwritten ? std::error_code() : unread, unwritten};
    }
    return {{}, out.commit()};
}

published_copy_t::failure_t published_copy_t::put_text(const std::string& file, std::string_view text) {
    return put(file, [text](const take_bytes_t& take) { return take(text); });
}

std::error_code published_copy_t::put_record(const std::string& unit, const publish_record_t& record) {
    std::string text = std::string(first_line) + record.root + '\n';
    for (const std::string& file : record.files) {
        text += is_recordable(file) ? file + '\n' : "";
    }
    return put_text(entry_path(unit, record_name), text).unwritten;
}

std::error_code published_copy_t::remove(const std::string& file) {
    std::string directory = libutils::parent_directory(file);
    std::error_code failure = enter(directory, missing_t::refused);
    if (!failure && unlink(path(file).c_str()) != 0) {
        failure = libutils::last_error();
    }
    for (; !directory.empty() && rmdir(path(directory).c_str()) == 0;
         directory = libutils::parent_directory(directory)) {
        entered_.erase(directory);
    }
    return libutils::is_absent(failure) ? std::error_code() : failure;
}

}  // namespace taloram
