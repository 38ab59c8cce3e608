#include "widgets/source_grid.h"

#include <memory>

#include "messages/message.h"
#include "toolkit/text_encoding.h"
#include "widgets/table_scroller.h"
#include "widgets/thumbnails.h"

namespace taloram {

namespace {

constexpr guint rows_per_file = 3;
constexpr int label_width = 20;   // characters
constexpr int least_width = 120;  // pixels, of a file without picture
constexpr int least_height = 90;  // pixels

}  // namespace

source_grid_t::source_grid_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table)
    : cells_(scroller, table, rows_per_file, [this](size_t index) { return std::make_unique<cell_t>(*this, index); }),
      held_search_([this](size_t index, const std::string& album) { mark(index, album); },
                   [this](const held_search_t::outcome_t& outcome) {
                       set_search(outcome.is_whole ? search_t::done : search_t::failed, outcome.reason);
                   }) {
}

void source_grid_t::show_files(const std::string& directory, const std::list<std::string>& names,
                               const std::string& book) {
    directory_ = directory;
    book_ = book;
    items_.clear();
    for (const std::string& name : names) {
        items_.push_back({{name}, ""});
    }
    cells_.reset(items_.size(), photos_in_row());
    set_search(items_.empty() ? search_t::none : search_t::going_on);
    held_search_.start(directory, {names.begin(), names.end()}, book);
}

std::vector<files_t> source_grid_t::selected() const {
    std::vector<files_t> files;
    files.reserve(items_.size());
    for (const item_t& item : items_) {
        if (item.choice.is_selected) {
            files.push_back(item.choice.chosen());
        }
    }
    return files;
}

void source_grid_t::set_selected(size_t index, bool is_selected) {
    if (cell_t* const cell = find_cell(index)) {
        cell->select.set_active(is_selected);
    } else {
        items_[index].choice.is_selected = is_selected;
    }
}

void source_grid_t::invert() {
    for (size_t index = 0; index < items_.size(); ++index) {
        set_selected(index, !items_[index].choice.is_selected);
    }
}

void source_grid_t::select_new() {
    for (size_t index = 0; index < items_.size(); ++index) {
        set_selected(index, items_[index].album.empty());
    }
}

void source_grid_t::set_search(search_t search, const std::string& reason) {
    search_ = search;
    why_failed_ = reason;
    searched_.emit();
}

void source_grid_t::mark(size_t index, const std::string& album) {
    items_.at(index).album = album;
    if (cell_t* const cell = find_cell(index)) {
        cell->show_mark();
    }
}

source_grid_t::cell_t* source_grid_t::find_cell(size_t index) const {
    return dynamic_cast<cell_t*>(cells_.find(index));
}

void source_grid_t::button_image(size_t index) {
    if (cell_t* const cell = find_cell(index)) {
        const bool is_selected = cell->select.get_active();
        items_[index].choice.is_selected = is_selected;
        cell->rotation.set_editable(is_selected);
        cell->rotation.set_sensitive(is_selected);
        cell->rotation.set_can_focus(false);
    }
}

void source_grid_t::button_rotate(size_t index) {
    cell_t* const cell = find_cell(index);
    if (cell == nullptr) {
        return;
    }
    photo_choice_t& choice = items_[index].choice;
    choice.angle = cell->rotation.get_value_as_int();
    if (cell->is_filled && cell->show_turned(cell->preview, choice.quarter_turns().value_or(0), choice.name)) {
        cell->select.set_image(cell->picture);
    }
}

source_grid_t::cell_t::cell_t(source_grid_t& owner, size_t place)
    : photo_cell_t(owner.items_[place].choice), grid(owner), index(place) {
    const photo_choice_t& choice = owner.items_[place].choice;
    const Glib::ustring shown_name = to_toolkit(choice.name);
    set_short_text(label, shown_name, label_width);
    rotation.set_update_policy(Gtk::UPDATE_IF_VALID);
    rotation.set_editable(choice.is_selected);
    rotation.set_sensitive(choice.is_selected);
    select.set_active(choice.is_selected);
    select.set_size_request(least_width, least_height);
    select.set_tooltip_text(shown_name);
    select.get_accessible()->set_name(shown_name);
    select.signal_clicked().connect([this] { grid.button_image(index); });
    rotation.signal_value_changed().connect([this] { grid.button_rotate(index); });
    show_mark();
}

std::vector<Gtk::Widget*> source_grid_t::cell_t::widgets() {
    return {&select, &label, is_photo(grid.items_[index].choice.name) ? &rotation : nullptr};
}

void source_grid_t::cell_t::fill() {
    if (load_thumbnail(preview, entry_path(grid.directory_, grid.items_[index].choice.name))) {
        grid.button_rotate(index);
    }
}

// Not the button: what shows that it is chosen must be as plain as on the others.
void source_grid_t::cell_t::show_mark() {
    constexpr double dimmed_picture = 0.35;
    constexpr double dimmed_name = 0.6;
    const auto& [choice, album] = grid.items_[index];
    if (album.empty()) {
        return;
    }
    const std::string in_book = album.starts_with(grid.book_ + "/") ? album.substr(grid.book_.size() + 1) : album;
    const Glib::ustring note = message_text(msg_is_held) + " " + to_toolkit(in_book);
    picture.set_opacity(dimmed_picture);
    label.set_opacity(dimmed_name);
    select.set_tooltip_text(to_toolkit(choice.name) + "\n" + note);
    select.get_accessible()->set_description(note);
}

}  // namespace taloram
