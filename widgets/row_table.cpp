#include "widgets/row_table.h"

#include <glibmm/main.h>
#include <gtkmm/box.h>

#include <algorithm>

#include "toolkit/text_encoding.h"
#include "widgets/table_scroller.h"

namespace taloram {

namespace {

constexpr int usual_height = 34;   // pixels of a row that was not measured yet
constexpr int column_spacing = 8;  // the table has more columns than widgets, so it has no spacing of its own

template <typename Text>
int width_of_column(const std::vector<book_entry_t>& entries, e_message_local_t heading, int widest, const Text& text) {
    int width = width_of(message_text(heading));
    for (const book_entry_t& entry : entries) {
        width = std::max(width, width_of(text(entry)));
    }
    return std::min(width, widest);
}

}  // namespace

row_table_t::row_table_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table, make_row_t make_row)
    : scroller_(scroller), table_(table), make_row_(std::move(make_row)) {
    // Rows of a short list keep their height in a tall window.
    table_.set_valign(Gtk::ALIGN_START);
    const auto look_again = sigc::mem_fun(*this, &row_table_t::schedule);
    scroller_.get_vadjustment()->signal_value_changed().connect(look_again);
    scroller_.get_vadjustment()->signal_changed().connect(look_again);
    scroller_.get_hadjustment()->signal_value_changed().connect(look_again);
    table_.signal_set_focus_child().connect(sigc::hide(look_again));
    table_.signal_size_allocate().connect(sigc::hide(look_again));
    headings_.set_no_show_all();
}

void row_table_t::add_headings(std::initializer_list<std::pair<guint, e_message_local_t>> headings) {
    int height = 0;
    for (const auto& [column, text] : headings) {
        auto* label = Gtk::manage(new Gtk::Label(message_text(text)));
        label->get_style_context()->add_class("dim-label");
        label->show();
        headings_.put(*label, 0, 0);
        headed_.push_back({column, label});
        Gtk::Requisition least;
        Gtk::Requisition natural;
        label->get_preferred_size(least, natural);
        height = std::max(height, natural.height);
    }
    headings_.set_size_request(-1, height);
}

void row_table_t::set_rows(size_t count) {
    for (const auto& [row, cells] : rows_) {
        for (const cell_t& cell : cells) {
            table_.remove(*cell.widget);
        }
    }
    rows_.clear();
    count_ = count;
    table_.resize(std::max(static_cast<guint>(count), 1U), table_.property_n_columns());
    headings_.set_visible(count > 0);
    update();
    fill_gaps();
}

void row_table_t::attach(Gtk::Widget& managed, guint column, size_t row) {
    const auto top = static_cast<guint>(row);
    table_.attach(managed, column, column + 1, top, top + 1, Gtk::FILL | Gtk::EXPAND, Gtk::FILL | Gtk::EXPAND, 0, 0);
    managed.set_margin_end(column_spacing);
    managed.show_all();
    rows_[row].push_back({&managed, column});
}

void row_table_t::grab_focus(guint column) {
    for (const cell_t& cell : first_row()) {
        if (cell.column == column) {
            cell.widget->grab_focus();
        }
    }
}

size_t row_table_t::row_of(const Gtk::Widget* cell_widget) const {
    for (const auto& [row, cells] : rows_) {
        for (const cell_t& cell : cells) {
            if (cell.widget == cell_widget) {
                return row;
            }
        }
    }
    return count_;
}

std::vector<row_table_t::cell_t> row_table_t::first_row() const {
    return rows_.empty() ? std::vector<cell_t>() : rows_.begin()->second;
}

int row_table_t::pitch() const {
    return (row_height_ == 0 ? usual_height : row_height_) + static_cast<int>(table_.get_default_row_spacing());
}

// A screen of rows before and after those that are seen is ready for the next step of the wheel or the keyboard.
std::map<size_t, bool> row_table_t::wanted_rows() const {
    std::map<size_t, bool> wanted;
    const auto want = [&](double begin, double end) {
        for (auto row = static_cast<size_t>(std::max(begin, 0.0)); row < count_ && static_cast<double>(row) < end;
             ++row) {
            wanted[row] = rows_.contains(row);
        }
    };
    const Glib::RefPtr<const Gtk::Adjustment> place = scroller_.get_vadjustment();
    const double first = place->get_value() / pitch();
    const double seen = std::max(place->get_page_size(), longest_list / 2.0) / pitch() + 1;
    want(first - seen, first + 2 * seen);
    want(0, 1);
    want(static_cast<double>(count_) - 1, static_cast<double>(count_));
    if (const size_t focused = row_of(table_.get_focus_child()); focused < count_) {
        want(static_cast<double>(focused) - 1, static_cast<double>(focused) + 2);
    }
    return wanted;
}

// Sizes are being given out when most signals come, and what is changed then is forgotten.
void row_table_t::schedule() {
    if (!is_scheduled_) {
        is_scheduled_ = true;
        Glib::signal_idle().connect_once(sigc::mem_fun(*this, &row_table_t::update), Glib::PRIORITY_HIGH_IDLE);
    }
}

void row_table_t::update() {
    is_scheduled_ = false;
    const int height = row_height_;
    const std::map<size_t, bool> wanted = wanted_rows();
    bool is_changed = false;
    for (auto row = rows_.begin(); row != rows_.end();) {
        if (wanted.contains(row->first)) {
            ++row;
            continue;
        }
        for (const cell_t& cell : row->second) {
            table_.remove(*cell.widget);
        }
        row = rows_.erase(row);
        is_changed = true;
    }
    for (const auto& [row, is_made] : wanted) {
        if (!is_made) {
            make_row_(row);
            is_changed = true;
        }
    }
    measure();
    if (is_changed || height != row_height_) {
        fill_gaps();
    }
    place_headings();
}

void row_table_t::measure() {
    int height = 0;
    for (const cell_t& cell : first_row()) {
        int least = 0;
        int natural = 0;
        cell.widget->get_preferred_height(least, natural);
        height = std::max(height, least);
    }
    row_height_ = height;
}

void row_table_t::fill_gaps() {
    for (Gtk::Widget* gap : gaps_) {
        table_.remove(*gap);
    }
    gaps_.clear();
    size_t end = 0;
    for (const auto& [row, cells] : rows_) {
        fill_gap(end, row);
        end = row + 1;
    }
}

void row_table_t::fill_gap(size_t begin, size_t end) {
    if (begin == end) {
        return;
    }
    auto* gap = Gtk::manage(new Gtk::HBox);
    gap->set_size_request(-1,
                          static_cast<int>(end - begin) * pitch() - static_cast<int>(table_.get_default_row_spacing()));
    gap->show();
    table_.attach(*gap, 0, 1, static_cast<guint>(begin), static_cast<guint>(end), Gtk::FILL, Gtk::FILL, 0, 0);
    gaps_.push_back(gap);
}

void row_table_t::place_headings() {
    if (rows_.empty() || !headings_.get_realized()) {
        return;
    }
    for (const heading_t& heading : headed_) {
        for (const cell_t& cell : rows_.begin()->second) {
            int x = 0;
            int y = 0;
            // A move lays the window out anew even when it leads nowhere.
            if (cell.column == heading.column && cell.widget->translate_coordinates(headings_, 0, 0, x, y) &&
                headings_.child_property_x(*heading.label) != x) {
                headings_.move(*heading.label, x, 0);
            }
        }
    }
}

Glib::ustring shown_head(const book_entry_t& entry) {
    return entry.unread ? message_text(msg_text_unreadable) + " " + to_toolkit(entry.unread.path)
                        : to_toolkit(entry.head_line);
}

entry_widths_t widths_of(const std::vector<book_entry_t>& entries) {
    const auto text_of = [](std::string book_entry_t::*text) {
        return [text](const book_entry_t& entry) { return to_toolkit(entry.*text); };
    };
    return {width_of_column(entries, msg_directory_column, 24, text_of(&book_entry_t::name)),
            width_of_column(entries, msg_count_column, 16, text_of(&book_entry_t::count)),
            width_of_column(entries, msg_title, 30, text_of(&book_entry_t::title)),
            width_of_column(entries, msg_text_column, 40, shown_head)};
}

Gtk::Label& text_cell(const Glib::ustring& text, int characters) {
    auto* label = Gtk::manage(new Gtk::Label);
    set_short_text(*label, text, characters);
    // Digits and capitals are wider than the letter that widths are counted in.
    label->set_width_chars(std::min(characters + characters / 5, readable_characters));
    return *label;
}

}  // namespace taloram
