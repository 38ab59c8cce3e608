#include "album/card/card_import.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "album/album_update.h"
#include "album/card/book_copies.h"
#include "album/card/card_albums.h"
#include "album/card/card_proof.h"
#include "album/engine_step.h"
#include "album/import/import_file.h"
#include "album/make_album.h"
#include "album/pages/book_index.h"
#include "album/write_lock.h"
#include "libutils/files/file_copy.h"
#include "libutils/files/flush.h"
#include "libutils/files/new_file.h"
#include "libutils/files/system_path.h"

namespace taloram {

namespace {

// Stands in an album from the first copy of an import until all is done.
std::string unfinished_mark(const std::string& album) {
    return entry_path(album, ".taloram-importing");
}

void mark_unfinished(const std::string& album) {
    const int file = open(unfinished_mark(album).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (file >= 0) {
        close(file);
        static_cast<void>(libutils::flush(album));
    }
}

// Copies a text whose own name the album writes itself.
std::error_code copy_renamed(const card_file_t& file, const std::string& album) {
    write_lock_t lock;
    if (const std::error_code failure = lock.acquire(album)) {
        return failure;
    }
    libutils::new_file_t copy(text_path(album, stored_name(file.name)), libutils::staging_t::above);
    std::error_code failure = copy.open();
    if (!failure) {
        failure = libutils::copy_file(file.path(), copy.current_path());
    }
    return failure ? failure : copy.commit_to_disk();
}

class importer_t {
  public:
    importer_t(const card_order_t& order, progress_signals_t& progress)
        : order_(order), progress_(progress), albums_(order.book, order.album, sums_), copies_(sums_) {}

    [[nodiscard]] card_result_t run();

  private:
    using group_t = std::pair<std::string, std::string>;  // album and directory of the card

    [[nodiscard]] card_listing_t list_cards();
    void import_new();
    void find_copy(size_t index);
    void plan(size_t index);
    void plan_again(size_t index, const book_file_t& copy);
    void import_group(const group_t& group, const std::vector<size_t>& indices);
    void take_result(const std::string& album, const std::vector<size_t>& indices, const album_result_t& made);
    void finish_albums();

    void prove_all();
    void prove(card_entry_t& entry);
    [[nodiscard]] bool proves(card_entry_t& entry, const std::string& copy);

    const card_order_t& order_;
    progress_signals_t& progress_;
    card_result_t result_;
    noted_sums_t sums_;
    card_albums_t albums_;
    book_copies_t copies_;
    std::set<std::string> unfinished_;               // albums that a killed import left
    std::set<std::string> refused_;                  // albums that an import failed for
    std::map<group_t, std::vector<size_t>> groups_;  // what is imported next
    std::map<std::string, std::string> titles_;      // of albums
};

card_listing_t importer_t::list_cards() {
    card_listing_t listing;
    for (const std::string& card : order_.cards) {
        const size_t before = listing.files.size();
        list_card(listing, card);
        if (listing.files.size() == before) {
            result_.empty_cards.push_back(card);
        }
    }
    return listing;
}

void importer_t::find_copy(size_t index) {
    card_entry_t& entry = result_.files[index];
    const std::optional<size_t> found = copies_.find(entry.file);
    if (!found) {
        return;
    }
    const book_file_t& copy = copies_.at(*found);
    entry.place = copy.path();
    entry.fate = copies_.was_held(*found) ? card_fate_t::held : card_fate_t::equal;
    if (copy.name == entry.file.name) {
        albums_.settle(entry.file, copy.album);
    }
    plan_again(index, copy);
}

// A killed import left a photograph without its sizes, or a movie without its sum: its copy stays, and what is missing
// is made. All others of the album are left alone, turned as they may be.
void importer_t::plan_again(size_t index, const book_file_t& copy) {
    const card_file_t& file = result_.files[index].file;
    if (unfinished_.count(copy.album) == 0 || copy.name != file.name) {
        return;
    }
    const bool lacks_sizes = is_photo(copy.name) && !is_exist(thumb_path(copy.album, copy.name));
    const bool lacks_sum = is_movie(copy.name) && !sums_.of(copy.album).sum_of(copy.path_in_album());
    if (lacks_sizes || lacks_sum) {
        groups_[{copy.album, file.directory}].push_back(index);
    }
}

void importer_t::plan(size_t index) {
    card_entry_t& entry = result_.files[index];
    const card_albums_t::place_t place = albums_.place(entry.file);
    if (place.album.empty()) {
        entry.reason = place.reason;
        return;
    }
    if (place.title) {
        titles_[place.album] = *place.title;
    }
    groups_[{place.album, entry.file.directory}].push_back(index);
}

// In rounds: what may be equal to a file that is imported in one is looked for among the copies in the next, so that
// the file itself is not read for it.
void importer_t::import_new() {
    std::vector<size_t> pending(result_.files.size());
    for (size_t i = 0; i < pending.size(); ++i) {
        pending[i] = i;
    }
    bool is_first = true;
    while (!pending.empty()) {
        std::vector<size_t> deferred;
        std::vector<size_t> numbered;
        equal_files_t planned([&](size_t number) { return result_.files[numbered[number]].file.path(); });
        groups_.clear();
        for (size_t i = 0; i < pending.size(); ++i) {
            card_entry_t& entry = result_.files[pending[i]];
            find_copy(pending[i]);
            if (entry.fate == card_fate_t::missing) {
                if (!planned.like(entry.file.path(), entry.file.length).empty()) {
                    deferred.push_back(pending[i]);
                } else {
                    planned.add(entry.file.length);
                    numbered.push_back(pending[i]);
                    plan(pending[i]);
                }
            }
            if (is_first) {
                emit_progress(progress_.verify, i, pending.size());
            }
        }
        is_first = false;
        for (const auto& [group, indices] : groups_) {
            import_group(group, indices);
        }
        pending = std::move(deferred);
    }
}

void importer_t::import_group(const group_t& group, const std::vector<size_t>& indices) {
    album_order_t order;
    order.source = group.second;
    order.album = group.first;
    std::vector<size_t> renamed;
    for (const size_t index : indices) {
        const std::string& name = result_.files[index].file.name;
        if (stored_name(name) == name) {
            order.files.push_back({name, 0});
        } else {
            renamed.push_back(index);
        }
    }
    // The texts of another album that lies on the card are none of this one.
    if (!is_exist(text_path(order.album, layout::head_text))) {
        const auto title = titles_.find(order.album);
        order.title = title == titles_.end() ? libutils::directory_name(order.album) : title->second;
        order.head = order.last = "";
    }
    order.options = {true, true};
    order.is_in_book = true;
    sigc::connection begun = progress_.begun.connect(
        [](const std::string& album, const std::vector<files_t>& /*files*/) { mark_unfinished(album); });
    album_result_t made = make_album(order, progress_);
    begun.disconnect();
    for (const size_t index : made.is_made() ? renamed : std::vector<size_t>()) {
        const card_file_t& file = result_.files[index].file;
        if (const std::error_code failure = copy_renamed(file, order.album)) {
            made.import.left_out.push_back({file.name, failure.message()});
        }
    }
    take_result(order.album, indices, made);
    sums_.forget(order.album);
}

void importer_t::take_result(const std::string& album, const std::vector<size_t>& indices, const album_result_t& made) {
    std::map<std::string, std::string> left_out;
    for (const left_out_t& file : made.import.left_out) {
        left_out[file.name] = file.reason;
    }
    for (const size_t index : indices) {
        card_entry_t& entry = result_.files[index];
        const auto failed = left_out.find(entry.file.name);
        entry.reason = failed != left_out.end() ? failed->second : made.reason;
        if (failed == left_out.end() && made.is_made() && entry.fate == card_fate_t::missing) {
            const book_file_t copy{album, directory_of_kind(entry.file.name), stored_name(entry.file.name),
                                   entry.file.length};
            entry.place = copy.path();
            entry.fate = card_fate_t::imported;
            copies_.add(copy);
        }
    }
    if (!made.is_made()) {
        result_.has_failed = true;
        refused_.insert(album);
        return;
    }
    unlink(unfinished_mark(album).c_str());
    if (std::find(result_.albums.begin(), result_.albums.end(), album) == result_.albums.end()) {
        result_.albums.push_back(album);
    }
}

// What a killed import left besides its copies: sizes of files that are not on these cards, and pages.
void importer_t::finish_albums() {
    for (const std::string& album : unfinished_) {
        if (update_all(album, {}, progress_) || refused_.count(album) != 0) {
            result_.has_failed = true;
        } else {
            unlink(unfinished_mark(album).c_str());
        }
    }
    if (!unfinished_.empty() && !step_done(makehtmlbook(order_.book), "makehtmlbook")) {
        result_.has_failed = true;
    }
}

bool importer_t::proves(card_entry_t& entry, const std::string& copy) {
    const comparison_t compared = compare_on_disk(entry.file.path(), copy);
    if (compared.is_copy) {
        entry.place = copy;
        entry.reason.clear();
    } else if (compared.original_unread) {
        entry.reason = "can't be read, " + compared.original_unread.message();
    } else if (entry.reason.empty()) {
        entry.reason =
            compared.copy_unread ? copy + " can't be read, " + compared.copy_unread.message() : "differs from " + copy;
    }
    return compared.is_copy;
}

void importer_t::prove(card_entry_t& entry) {
    const std::string expected = std::exchange(entry.place, "");
    if (!expected.empty() && proves(entry, expected)) {
        return;
    }
    for (const size_t index : copies_.like(entry.file)) {
        const std::string copy = copies_.at(index).path();
        if (copy != expected && proves(entry, copy)) {
            entry.fate = copies_.was_held(index) ? card_fate_t::held : card_fate_t::equal;
            return;
        }
    }
    entry.fate = card_fate_t::missing;
    if (entry.reason.empty()) {
        entry.reason = "no file of the book has its contents";
    }
}

// What is on the cards now counts: a file may have come, gone or changed since they were listed first.
void importer_t::prove_all() {
    std::map<std::string, card_entry_t> before;
    for (card_entry_t& entry : result_.files) {
        const std::string path = entry.file.path();
        before.emplace(path, std::move(entry));
    }
    result_.files.clear();
    result_.empty_cards.clear();
    card_listing_t now = list_cards();
    result_.has_failed = !now.is_whole || result_.has_failed;
    result_.passed_over = std::move(now.passed_over);
    result_.beside = std::move(now.beside);
    for (size_t i = 0; i < now.files.size(); ++i) {
        const auto known = before.find(now.files[i].path());
        card_entry_t entry;
        if (known != before.end()) {
            entry = std::move(known->second);
            before.erase(known);
        }
        entry.file = now.files[i];
        prove(entry);
        result_.files.push_back(std::move(entry));
        emit_progress(progress_.verify, i, now.files.size());
    }
    for (auto& [path, entry] : before) {
        entry.fate = card_fate_t::missing;
        entry.reason = "gone from the card";
        result_.files.push_back(std::move(entry));
    }
}

card_result_t importer_t::run() {
    result_.has_failed = !copies_.load(order_.book, order_.cards);
    for (const std::string& album : copies_.albums()) {
        if (is_exist(unfinished_mark(album))) {
            unfinished_.insert(album);
        }
    }
    if (!order_.only_check && !result_.has_failed) {
        for (card_file_t& file : list_cards().files) {
            result_.files.push_back({std::move(file), card_fate_t::missing, "", ""});
        }
        import_new();
        finish_albums();
    }
    prove_all();
    return std::move(result_);
}

}  // namespace

size_t card_result_t::count(card_fate_t fate) const {
    return static_cast<size_t>(
        std::count_if(files.begin(), files.end(), [fate](const card_entry_t& entry) { return entry.fate == fate; }));
}

bool card_result_t::is_proven() const {
    return !has_failed && empty_cards.empty() && !files.empty() && count(card_fate_t::missing) == 0;
}

card_result_t import_cards(const card_order_t& order, progress_signals_t& progress) {
    return importer_t(order, progress).run();
}

}  // namespace taloram
