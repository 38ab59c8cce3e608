#include "album/publish/publish.h"

#include <algorithm>
#include <list>
#include <set>

#include "album/engine_step.h"
#include "album/pages/page_frame.h"
#include "album/publish/movie_place.h"
#include "album/publish/page_links.h"
#include "album/publish/public_photo.h"
#include "album/publish/publish_plan.h"
#include "album/publish/published_copy.h"
#include "album/publish/text_warnings.h"
#include "album/turn/pending_turn.h"
#include "album/write_lock.h"
#include "libutils/files/directory.h"
#include "libutils/files/path.h"
#include "libutils/files/read_file.h"
#include "libutils/files/system_path.h"
#include "libutils/text/text.h"

namespace taloram {

namespace {

// From a directory of the copy to the copy itself.
std::string way_up(const std::string& unit) {
    std::string way = unit.empty() ? "." : "..";
    for (const char c : unit) {
        way += c == '/' ? "/.." : "";
    }
    return way;
}

class publisher_t {
  public:
    publisher_t(const publish_order_t& order, progress_t& progress)
        : order_(order), progress_(progress), plan_(order.source), copy_(order.directory) {}

    published_t run();

  private:
    bool fail() {
        has_failed_ = true;
        return false;
    }
    bool fail(const std::string& path, const std::error_code& reason) {
        libutils::report(libutils::printable(path), ": ", reason.message());
        return fail();
    }

    [[nodiscard]] bool is_fit();
    [[nodiscard]] bool is_ready(const publish_unit_t& unit);
    bool publish_unit(publish_unit_t& unit);
    [[nodiscard]] bool put_record(const publish_unit_t& unit);
    bool put_file(const std::string& file);
    bool put_photo(const std::string& file);
    bool put_page(const std::string& page);
    bool note(const std::string& file, const published_copy_t::failure_t& failure);
    void look_for_place(const std::string& file);
    [[nodiscard]] bool starts_as_photo(const std::string& file) const;
    void check_links();
    void treat_outdated(const std::string& directory, published_t& result);

    const publish_order_t& order_;
    progress_t& progress_;
    publish_plan_t plan_;
    published_copy_t copy_;
    bool has_failed_ = false;  // beside single files
    bool lacks_file_ = false;
    bool is_stopped_ = false;  // by a write that failed
};

// Looked at again for every unit, whose directories may be links.
bool publisher_t::is_fit() {
    for (const publish_unit_t& unit : plan_.units()) {
        const std::string reason = unfit_copy({plan_.path(unit.path), order_.directory});
        if (!reason.empty()) {
            libutils::report(libutils::printable(order_.directory), reason);
            return false;
        }
    }
    return true;
}

bool publisher_t::is_ready(const publish_unit_t& unit) {
    if (unit.is_album && has_left_turns(plan_.path(unit.path))) {
        libutils::report(libutils::printable(plan_.path(unit.path)),
                         ": photographs are turned only in part; an update ends that.");
        return false;
    }
    return true;
}

// Before the first file: what is published is known as such from its beginning.
bool publisher_t::put_record(const publish_unit_t& unit) {
    publish_record_t record;
    const std::error_code failure = load_record(record, copy_.path(unit.path));
    if (failure && !libutils::is_absent(failure)) {
        return fail(entry_path(copy_.path(unit.path), record_name), failure);
    }
    record.root = way_up(unit.path);
    const bool is_root = plan_.is_last(unit);
    const size_t start = unit.path.empty() ? 0 : unit.path.size() + 1;
    for (const auto* files : {&unit.files, &unit.pages}) {
        for (const std::string& file : *files) {
            if (is_root || !plan_.foreign().contains(file)) {
                record.files.insert(file.substr(start));
            }
        }
    }
    if (is_root) {
        record.files.insert(plan_.foreign().begin(), plan_.foreign().end());
    }
    const std::error_code unwritten = copy_.put_record(unit.path, record);
    return !unwritten || fail(copy_.path(entry_path(unit.path, record_name)), unwritten);
}

// After a failure: false when nothing more is to be written.
bool publisher_t::note(const std::string& file, const published_copy_t::failure_t& failure) {
    if (failure.unread) {
        libutils::report(libutils::printable(plan_.path(file)), ": not published, ", failure.unread.message());
        lacks_file_ = true;
    }
    if (failure.unwritten) {
        is_stopped_ = true;
        return fail(copy_.path(file), failure.unwritten);
    }
    return true;
}

// What stands in the copy may be the photograph with all its data, and goes when there is nothing to replace it.
bool publisher_t::put_photo(const std::string& file) {
    libutils::bytes_t bytes;
    public_photo_t photo;
    if (const std::error_code unread = libutils::map_file(bytes, plan_.path(file))) {
        return note(file, {unread, copy_.remove(file)});
    }
    if (!photo.read(bytes)) {
        libutils::report(libutils::printable(plan_.path(file)), ": not published, its segments can't be read.");
        lacks_file_ = true;
        return note(file, {{}, copy_.remove(file)});
    }
    return note(file, copy_.put(file, [&](const take_bytes_t& take) {
        for (const std::string_view part : photo.parts()) {
            if (const std::error_code failure = take(part)) {
                return failure;
            }
        }
        return bytes.is_intact() ? std::error_code() : make_error_code(std::errc::io_error);
    }));
}

void publisher_t::look_for_place(const std::string& file) {
    libutils::bytes_t movie;
    if (!libutils::map_file(movie, plan_.path(file)) && names_a_place({movie.begin(), movie.size()})) {
        libutils::report(libutils::printable(plan_.path(file)), ": its data name a place; it is published as it is.");
    }
}

bool publisher_t::starts_as_photo(const std::string& file) const {
    constexpr std::string_view start_of_image = "\xFF\xD8\xFF";
    bool is_found = false;
    const auto look = [&](std::string_view bytes) {
        is_found = bytes.starts_with(start_of_image);
        return make_error_code(std::errc::operation_canceled);
    };
    static_cast<void>(contents_of_file(plan_.path(file))(look));
    return is_found;
}

bool publisher_t::put_file(const std::string& file) {
    const bool is_named_photo = is_photo(file) || libutils::extcasecmp(file, ".jpeg") == 0;
    if (!order_.keep_data && (is_named_photo || starts_as_photo(file))) {
        return put_photo(file);
    }
    look_for_place(file);
    return note(file, copy_.put(file, contents_of_file(plan_.path(file))));
}

// The page above the copy is not published; where none stands there the line that leads to it is left out.
bool publisher_t::put_page(const std::string& page) {
    std::string text;
    if (const std::error_code failure = plan_.load_page(text, page)) {
        return note(page, {failure, {}});
    }
    const size_t line = text.rfind(line_up);
    if (line != std::string::npos && libutils::parent_directory(page).empty() &&
        file_of_link(order_.directory, entry_path("..", layout::index_page)).empty()) {
        text.erase(line, line_up.size());
    }
    return note(page, copy_.put_text(page, text));
}

bool publisher_t::publish_unit(publish_unit_t& unit) {
    write_lock_t lock;
    if (!lock_album(lock, plan_.path(unit.path)) || !is_ready(unit) || !plan_.add_files(unit)) {
        return fail();
    }
    warn_of_texts(plan_.path(unit.path), unit.is_album);
    if (!put_record(unit)) {
        is_stopped_ = true;
        return false;
    }
    size_t index = 0;
    const size_t count = unit.files.size() + unit.pages.size();
    for (const std::string& file : unit.files) {
        if (!put_file(file)) {
            return false;
        }
        emit_progress(progress_, index++, count);
    }
    for (const std::string& page : unit.pages) {
        if (!put_page(page)) {
            return false;
        }
        emit_progress(progress_, index++, count);
    }
    return true;
}

// Asks the copy as it lies on the disk, not what was meant to be there. Each target is reported once.
void publisher_t::check_links() {
    std::set<std::string> known;
    for (const publish_unit_t& unit : plan_.units()) {
        for (const std::string& page : unit.pages) {
            std::string text;
            if (libutils::read_file(text, copy_.path(page), longest_page)) {
                continue;  // not published, which was told
            }
            for (const std::string& link : links_of_page(text)) {
                const auto path = resolve_link(page, link);
                if (!path || !known.insert(*path).second) {
                    continue;
                }
                // What only the copy still has may be something else by now.
                if (plan_.missing().contains(*path) || file_of_link(order_.directory, *path).empty()) {
                    libutils::report(libutils::printable(copy_.path(page)), ": leads to ", libutils::printable(*path),
                                     ", which is not there.");
                    lacks_file_ = true;
                }
            }
        }
    }
}

// In `directory` of the copy and below it. What this copy did not bring there is left alone.
void publisher_t::treat_outdated(const std::string& directory, published_t& result) {
    std::list<std::string> below;
    if (is_closed(copy_.path(directory))) {
        return;
    }
    if (const std::error_code failure = libutils::list_directories(below, copy_.path(directory))) {
        fail(copy_.path(directory), failure);
        return;
    }
    for (const std::string& name : below) {
        treat_outdated(entry_path(directory, name), result);
    }
    publish_record_t record;
    if (load_record(record, copy_.path(directory)) || record.root != way_up(directory)) {
        return;
    }
    const size_t before = record.files.size();
    for (auto file = record.files.begin(); file != record.files.end();) {
        const std::string path = entry_path(directory, *file);
        const bool is_linked = plan_.wanted().contains(path) || plan_.missing().contains(path);
        if (is_linked || (!order_.prune && copy_.has(path))) {
            result.outdated += is_linked ? 0 : 1;
            ++file;
        } else if (const std::error_code failure = order_.prune ? copy_.remove(path) : std::error_code()) {
            fail(copy_.path(path), failure);
            ++file;
        } else {
            file = record.files.erase(file);
        }
    }
    if (record.files.size() == before) {
        return;
    }
    const std::string path = entry_path(directory, record_name);
    const std::error_code failure =
        record.files.empty() && !directory.empty() ? copy_.remove(path) : copy_.put_record(directory, record);
    if (failure) {
        fail(copy_.path(path), failure);
    }
}

published_t publisher_t::run() {
    published_t result;
    write_lock_t lock;
    libutils::mkdir(order_.directory.c_str());
    if (!lock_album(lock, order_.directory) || !plan_.find_units() || !is_fit()) {
        return result;
    }
    // The mark of the whole copy, where it is not that of the first unit.
    if (plan_.units().size() == 1 || put_record(plan_.units().back())) {
        for (publish_unit_t& unit : plan_.units()) {
            if (!is_stopped_) {
                publish_unit(unit);
            }
        }
        if (!has_failed_) {
            treat_outdated("", result);
        }
        check_links();
    }
    result.is_complete = !has_failed_ && !lacks_file_;
    return result;
}

}  // namespace

published_t publish(const publish_order_t& order, progress_t& progress) {
    return publisher_t(order, progress).run();
}

}  // namespace taloram
