#include "widgets/scrolled_grid.h"

#include <glibmm/main.h>
#include <gtkmm/adjustment.h>
#include <gtkmm/window.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace taloram {

namespace {

// So few need no care: all have their widgets all the time.
constexpr size_t few_cells = 60;
constexpr double least_page = 800;  // pixels, before the scroller has its height
constexpr int gap = 4;              // pixels between photographs
constexpr size_t most_table_lines = 65535;

constexpr std::chrono::milliseconds first_slice{100};
constexpr std::chrono::milliseconds work_slice{20};  // enough for some pictures, too short to be felt

int least_height(Gtk::Widget& widget) {
    Gtk::Requisition least;
    Gtk::Requisition natural;
    widget.get_preferred_size(least, natural);
    return least.height;
}

}  // namespace

scrolled_grid_t::scrolled_grid_t(Gtk::ScrolledWindow& scroller, Gtk::Table& table, guint rows, make_t make)
    : scroller_(scroller), table_(table), rows_(rows), make_(std::move(make)) {
    box_.pack_start(above_, Gtk::PACK_SHRINK);
    box_.pack_start(table_, Gtk::PACK_EXPAND_WIDGET);
    box_.pack_start(below_, Gtk::PACK_SHRINK);
    scroller_.add(box_);
    box_.show_all();
    const Glib::RefPtr<Gtk::Adjustment> place = scroller_.get_vadjustment();
    place->signal_value_changed().connect(sigc::mem_fun(*this, &scrolled_grid_t::plan_update));
    place->signal_changed().connect(sigc::mem_fun(*this, &scrolled_grid_t::plan_update));
}

void scrolled_grid_t::reset(size_t count, size_t columns) {
    for (size_t row = attached_.first; row < attached_.last; ++row) {
        detach_row(row);
    }
    attached_ = {};
    drop_cells();
    columns_ = std::max(columns, size_t{1});
    row_height_ = 0;
    base_ = 0;
    cells_.resize(count);
    resize_table();
    scroller_.get_vadjustment()->set_value(0);
    update();
    if (!fill_for(first_slice)) {
        filling_.disconnect();
    }
}

void scrolled_grid_t::set_columns(size_t columns) {
    columns = std::max(columns, size_t{1});
    if (columns == columns_) {
        return;
    }
    const Glib::RefPtr<Gtk::Adjustment> place = scroller_.get_vadjustment();
    const size_t top =
        row_height_ == 0 ? 0 : static_cast<size_t>(place->get_value()) / static_cast<size_t>(row_height_) * columns_;
    const focus_t focus = find_focus();
    for (size_t row = attached_.first; row < attached_.last; ++row) {
        detach_row(row);
    }
    attached_ = {};
    columns_ = columns;
    resize_table();
    const auto height = static_cast<double>(row_height_);
    place->set_upper(std::max(height * static_cast<double>(row_count()), place->get_page_size()));
    place->set_value(height * static_cast<double>(top / columns_));
    update();
    if (cell_t* const cell = focus.is_set ? find(focus.index) : nullptr) {
        take_focus(*cell->widgets()[focus.part]);
    }
}

void scrolled_grid_t::resize_table() {
    // Only a start, and not a full one: the table grows with what is attached to it.
    const size_t count = cells_.size();
    table_.resize(1, 1);
    table_.resize(static_cast<guint>(std::min(count % columns_ + 1, most_table_lines)),
                  static_cast<guint>(std::min(rows_ * (count / columns_) + rows_, most_table_lines)));
}

scrolled_grid_t::cell_t* scrolled_grid_t::find(size_t index) const {
    return index < cells_.size() ? cells_[index].get() : nullptr;
}

void scrolled_grid_t::focus_on(size_t index, size_t part) {
    if (index >= cells_.size()) {
        return;
    }
    const auto height = static_cast<double>(row_height_);
    const double top = height * static_cast<double>(index / columns_);
    scroller_.get_vadjustment()->clamp_page(top, top + height);
    update();
    if (cell_t* const cell = find(index)) {
        take_focus(*cell->widgets()[part]);
    }
}

// What is within a page of what is seen.
scrolled_grid_t::range_t scrolled_grid_t::wanted_rows() const {
    if (cells_.size() <= few_cells) {
        return {0, row_count()};
    }
    if (row_height_ == 0) {
        return {0, 1};
    }
    const Glib::RefPtr<const Gtk::Adjustment> place = std::as_const(scroller_).get_vadjustment();
    const double page = std::max(place->get_page_size(), least_page);
    const auto row_at = [this](double height) {
        const double row = std::clamp(height / row_height_, 0.0, static_cast<double>(row_count()));
        return static_cast<size_t>(row);
    };
    const size_t first = std::min(row_at(place->get_value() - page), row_count() - 1);
    return {first, std::min(row_at(place->get_value() + 2 * page) + 1, row_count())};
}

scrolled_grid_t::range_t scrolled_grid_t::cells_of(const range_t& rows) const {
    return {std::min(rows.first * columns_, cells_.size()), std::min(rows.last * columns_, cells_.size())};
}

// Later, but before the next drawing: the table can't be changed while sizes are given out.
void scrolled_grid_t::plan_update() {
    if (!update_.connected()) {
        update_ = Glib::signal_idle().connect(sigc::track_obj(
                                                  [this] {
                                                      update();
                                                      return false;
                                                  },
                                                  *this),
                                              Glib::PRIORITY_HIGH_IDLE);
    }
}

void scrolled_grid_t::update() {
    range_t rows = wanted_rows();
    if (row_height_ == 0 && rows.last > rows.first) {
        // Empty cells would tell too little about how many the screen has room for.
        attach_row(0);
        attached_ = {0, 1};
        fill(*cells_.front());
        measure();
        rows = wanted_rows();
    }
    if (rows == attached_) {
        return;
    }
    const focus_t focus = find_focus();
    const range_t before = attached_;
    // A table has only so many rows; no window is high enough to show photographs of two parts of this size.
    const size_t part = most_table_lines / rows_ / 2;
    const size_t base = rows.first / part * part;
    const bool is_moved = base != base_;
    for (size_t row = before.first; row < before.last; ++row) {
        if (is_moved || !rows.contains(row)) {
            detach_row(row);
        }
    }
    base_ = base;
    attached_ = rows;
    for (size_t row = rows.first; row < rows.last; ++row) {
        if (is_moved || !before.contains(row)) {
            attach_row(row);
        }
    }
    move_focus(focus);
    drop_cells();
    measure();
    if (!filling_.connected() && next_to_fill() != nullptr) {
        filling_ =
            Glib::signal_idle().connect(sigc::bind(sigc::mem_fun(*this, &scrolled_grid_t::fill_for), work_slice));
    }
}

void scrolled_grid_t::attach_row(size_t row) {
    const range_t cells = cells_of({row, row + 1});
    for (size_t index = cells.first; index < cells.last; ++index) {
        if (!cells_[index]) {
            cells_[index] = make_(index);
        }
        const auto column = static_cast<guint>(index % columns_);
        guint line = table_row(row);
        for (Gtk::Widget* widget : cells_[index]->widgets()) {
            if (widget != nullptr) {
                table_.attach(*widget, column, column + 1, line, line + 1);
                // Not the table's spacing, which counts for columns that nothing is in, too.
                widget->set_margin_end(gap);
                widget->show_all();
            }
            ++line;
        }
    }
}

void scrolled_grid_t::detach_row(size_t row) {
    const range_t cells = cells_of({row, row + 1});
    for (size_t index = cells.first; index < cells.last; ++index) {
        for (Gtk::Widget* widget : cells_[index]->widgets()) {
            if (widget != nullptr) {
                table_.remove(*widget);
            }
        }
    }
    // What was the space after the row is nothing now.
    if (const guint line = table_row(row + 1) - 1; line < table_.property_n_rows()) {
        table_.set_row_spacing(line, 0);
    }
}

// All that are not in the table; nothing is left of them before the next event.
void scrolled_grid_t::drop_cells() {
    const range_t kept = cells_of(attached_);
    for (size_t index = 0; index < cells_.size(); ++index) {
        if (cells_[index] && !kept.contains(index)) {
            dropped_.push_back(std::move(cells_[index]));
        }
    }
    if (!dropped_.empty()) {
        Glib::signal_idle().connect_once(sigc::track_obj([this] { dropped_.clear(); }, *this),
                                         Glib::PRIORITY_HIGH_IDLE);
    }
}

scrolled_grid_t::focus_t scrolled_grid_t::find_focus() const {
    const auto* const window = dynamic_cast<Gtk::Window*>(scroller_.get_toplevel());
    const Gtk::Widget* const focused = window == nullptr ? nullptr : window->get_focus();
    const range_t cells = cells_of(attached_);
    for (size_t index = cells.first; focused != nullptr && index < cells.last; ++index) {
        const std::vector<Gtk::Widget*> widgets = cells_[index]->widgets();
        const auto found = std::find(widgets.begin(), widgets.end(), focused);
        if (found != widgets.end()) {
            return {index, static_cast<size_t>(found - widgets.begin()), true};
        }
    }
    return {};
}

// The focus of a photograph that was scrolled away goes to one that is seen, so that the keyboard goes on from there.
void scrolled_grid_t::move_focus(const focus_t& focus) {
    if (!focus.is_set || row_height_ == 0 || cells_of(attached_).contains(focus.index)) {
        return;
    }
    const Glib::RefPtr<const Gtk::Adjustment> place = std::as_const(scroller_).get_vadjustment();
    const auto seen = static_cast<size_t>(std::ceil(place->get_value() / row_height_));
    const size_t row = std::clamp(seen, attached_.first, attached_.last - 1);
    const size_t index = std::min(row * columns_ + focus.index % columns_, cells_.size() - 1);
    if (Gtk::Widget* const widget = find(index) == nullptr ? nullptr : cells_[index]->widgets()[focus.part]) {
        take_focus(*widget);
    }
}

// The widget may have no place yet, and the scroller would go to the top for it.
void scrolled_grid_t::take_focus(Gtk::Widget& widget) {
    const Glib::RefPtr<Gtk::Adjustment> place = scroller_.get_vadjustment();
    const double value = place->get_value();
    widget.grab_focus();
    place->set_value(value);
}

// As the table reckons it.
int scrolled_grid_t::height_of(size_t row) const {
    std::vector<int> heights(rows_);
    const range_t cells = cells_of({row, row + 1});
    for (size_t index = cells.first; index < cells.last; ++index) {
        size_t line = 0;
        for (Gtk::Widget* widget : cells_[index]->widgets()) {
            heights[line] = std::max(heights[line], widget == nullptr ? 0 : least_height(*widget));
            ++line;
        }
    }
    int height = 0;
    for (const int line_height : heights) {
        height += line_height;
    }
    return height;
}

void scrolled_grid_t::measure() {
    const int before = row_height_;
    std::vector<int> heights;
    for (size_t row = attached_.first; row < attached_.last; ++row) {
        heights.push_back(height_of(row));
        row_height_ = std::max(row_height_, heights.back());
    }
    // Rows of the table's own, so that the space after the last one counts.
    if (const guint lines = table_row(attached_.last) + 1;
        attached_.last < row_count() && table_.property_n_rows() < lines) {
        table_.resize(lines, table_.property_n_columns());
    }
    for (size_t i = 0; i < heights.size(); ++i) {
        const size_t row = attached_.first + i;
        if (row + 1 < row_count()) {
            table_.set_row_spacing(table_row(row + 1) - 1, static_cast<guint>(row_height_ - heights[i]));
        }
    }
    const auto height_of_rows = [this](size_t rows) {
        const size_t height = std::min<size_t>(rows * static_cast<size_t>(row_height_), G_MAXINT / 4);
        return height == 0 ? -1 : static_cast<int>(height);  // the toolkit makes a pixel of 0
    };
    above_.set_size_request(-1, height_of_rows(attached_.first));
    below_.set_size_request(-1, height_of_rows(row_count() - attached_.last));
    if (before != 0 && before != row_height_) {
        // The same photographs stay in sight.
        const Glib::RefPtr<Gtk::Adjustment> place = scroller_.get_vadjustment();
        const double value = place->get_value() * row_height_ / before;
        if (value > 0) {
            place->set_upper(std::max(place->get_upper(), static_cast<double>(height_of_rows(row_count()))));
            place->set_value(value);
        }
    }
}

// What is seen first, then what is below, then what is above.
scrolled_grid_t::cell_t* scrolled_grid_t::next_to_fill() const {
    const range_t cells = cells_of(attached_);
    const Glib::RefPtr<const Gtk::Adjustment> place = std::as_const(scroller_).get_vadjustment();
    const size_t top = row_height_ == 0 ? 0 : static_cast<size_t>(place->get_value() / row_height_) * columns_;
    const size_t count = cells.last - cells.first;
    const size_t start = std::clamp(top, cells.first, cells.last) - cells.first;
    for (size_t i = 0; i < count; ++i) {
        cell_t* const cell = cells_[cells.first + (start + i) % count].get();
        if (!cell->is_filled) {
            return cell;
        }
    }
    return nullptr;
}

void scrolled_grid_t::fill(cell_t& cell) {
    if (!cell.is_filled) {
        cell.is_filled = true;
        cell.fill();
    }
}

// True when there is more to do.
bool scrolled_grid_t::fill_for(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    cell_t* cell = next_to_fill();
    while (cell != nullptr && std::chrono::steady_clock::now() < end) {
        fill(*cell);
        cell = next_to_fill();
    }
    measure();
    return cell != nullptr;
}

}  // namespace taloram
