#include "dialogs/import_run.h"

#include <algorithm>
#include <chrono>
#include <list>
#include <vector>

#include "album/apart.h"
#include "dialogs/make_album_dialog.h"
#include "libutils/text/text.h"
#include "settings/settings.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"

namespace taloram {

namespace {

// Where a new album may lie: in the book or in one of its books, not the book itself nor anywhere outside.
bool lies_in_book(const std::string& album, const std::string& book) {
    const std::string start = entry_path(book, "");
    if (libutils::stringcmp(album.c_str(), start.c_str()) != 0 || album.size() == start.size()) {
        return false;
    }
    std::list<std::string> names;
    libutils::separate_token(names, album.substr(start.size()), "/");
    return std::all_of(names.begin(), names.end(), is_plain_name);
}

// Why an album was not made, with what the engine says about it below the text of the box.
void show_refusal(Gtk::Window& parent, const album_result_t& result) {
    switch (*result.refused) {
        case album_step_t::source:
            show_error(parent, msg_source_missing);
            return;
        case album_step_t::names: {
            Glib::ustring names = message_text(msg_names_clash);
            for (const auto& [a, b] : result.clashes) {
                names += "\n" + to_toolkit(a) + ", " + to_toolkit(b);
            }
            show_error(parent, result.clashes.empty() ? to_toolkit(result.reason) : names);
            return;
        }
        case album_step_t::room:
            show_error(parent, message_text(msg_no_room) + "\n" + message_text(msg_room_missing) + " " +
                                   to_toolkit(result.missing_room));
            return;
        case album_step_t::directory:
        case album_step_t::texts:
            show_failure(parent, msg_comments_failed, result.reason);
            return;
        case album_step_t::conflicts:
        case album_step_t::lock:
        case album_step_t::import:
        case album_step_t::book_page:
            break;
    }
    show_failure(parent, msg_album_failed, result.reason, result.import.file);
}

// A look at files that are there already may take its time: behind the progress window, should it last.
template <typename look_t>
auto look(Gtk::Window& parent, progress_window_t& progress, const album_order_t& order, const look_t& work) {
    constexpr std::chrono::milliseconds patience{500};
    Gtk::Window* const behind = progress.get_transient_for();
    progress.set_transient_for(parent);
    progress.begin(to_toolkit(order.album), patience);
    auto found = work(progress.signals());
    progress.end();
    progress.set_transient_for(*behind);
    return found;
}

// Whether an album that is there may get the files. That it is added to says nothing about files that would be lost.
bool may_add(Gtk::Window& parent, progress_window_t& progress, const album_order_t& order) {
    if (!is_exist(order.album)) {
        return true;
    }
    if (!ask_yes_no(parent, msg_album_exists)) {
        return false;
    }
    const std::optional<std::vector<std::string>> replaced = look(
        parent, progress, order, [&](progress_signals_t& signals) { return apart::find_conflicts(order, signals); });
    return replaced && (replaced->empty() || ask_about_list(parent, msg_replaces_files, *replaced));
}

// What is chosen can be made; what is missing was told otherwise.
bool is_fit(Gtk::Window& parent, progress_window_t& progress, const album_order_t& order, const std::string& book) {
    if (order.files.empty()) {
        show_error(parent, msg_nothing_selected);
    } else if (order.source.empty()) {
        show_error(parent, msg_source_missing);
    } else if (!lies_in_book(order.album, book)) {
        show_error(parent, msg_album_missing);
    } else if (is_book(order.album)) {
        show_error(parent, msg_names_a_book);
    } else if (!may_add(parent, progress, order)) {
        return false;
    } else if (order.title->empty()) {
        show_error(parent, msg_title_missing);
    } else if (const album_result_t found =
                   look(parent, progress, order,
                        [&](progress_signals_t& signals) { return apart::check_album_order(order, signals); });
               !found.is_made()) {
        if (!found.is_only_stopped()) {
            show_refusal(parent, found);
        }
    } else {
        return true;
    }
    return false;
}

album_order_t order_of(const MakeAlbumDialog& dialog) {
    album_order_t order;
    order.source = dialog.get_from();
    order.files = dialog.selected_files();
    order.album = dialog.get_to();
    order.title = dialog.get_title();
    order.head = dialog.begin_comment();
    order.last = dialog.last_comment();
    order.options = dialog.options();
    order.replace = replace_t::files;  // the user is asked about them
    order.is_in_book = true;
    return order;
}

void show_left_out(Gtk::Window& parent, const std::vector<left_out_t>& files) {
    std::vector<std::string> lines;
    for (const auto& [name, reason] : files) {
        lines.push_back(name + ": " + reason);
    }
    show_list(parent, msg_left_out, lines);
}

}  // namespace

std::optional<album_order_t> ask_for_album(Gtk::Window& parent, progress_window_t& progress, const std::string& book) {
    MakeAlbumDialog dialog(parent, g_global.from, book);
    for (;;) {
        switch (dialog.run()) {
            case Gtk::RESPONSE_OK:
                if (album_order_t order = order_of(dialog); is_fit(dialog, progress, order, book)) {
                    return order;
                }
                break;
            case Gtk::RESPONSE_CANCEL:
            case Gtk::RESPONSE_DELETE_EVENT:
            case Gtk::RESPONSE_NONE:
                return std::nullopt;
            default:
                break;
        }
    }
}

bool run_import(Gtk::Window& parent, progress_window_t& progress, album_order_t order) {
    bool is_told = false;
    if (!order.options.keep_going) {
        order.options.leaves_out = [&](const left_out_t& file) {
            is_told = !show_failure_or(progress, msg_album_failed, file.reason, file.name, msg_leave_out_this);
            return !is_told;
        };
    }
    progress.begin(to_toolkit(order.album));
    progress.show_verification(order.options.verify);
    const album_result_t result = apart::make_album(order, progress.signals());
    progress.end();
    if (!result.is_made() && !result.is_only_stopped()) {
        if (!is_told) {
            show_refusal(parent, result);
        }
        return false;
    }
    if (order.options.keep_going && !result.import.left_out.empty()) {
        show_left_out(parent, result.import.left_out);
    }
    return true;
}

}  // namespace taloram
