#include "dialogs/thumbnail_grid.h"

#include <atkmm/object.h>
#include <glibmm/main.h>
#include <gtkmm/adjustment.h>

#include <algorithm>
#include <chrono>
#include <list>
#include <sstream>

#include "album/album_layout.h"
#include "album/comment_store.h"
#include "dialogs/thumbnails.h"
#include "libutils/text.h"
#include "shooting_data/exif_summary.h"
#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr int picture_width = 192;  // pixels
constexpr int picture_height = 144;

// Long enough to fill a few cells, too short to be felt.
constexpr std::chrono::milliseconds work_slice{20};

// Camera's thumbnails come in many sizes; larger ones are made smaller, for equal rows.
Glib::RefPtr<Gdk::Pixbuf> fit_into_cell(const Glib::RefPtr<Gdk::Pixbuf>& pixels) {
    const double scale = std::min(static_cast<double>(picture_width) / pixels->get_width(),
                                  static_cast<double>(picture_height) / pixels->get_height());
    if (scale >= 1) {
        return pixels;
    }
    const auto scaled = [scale](int length) { return std::max(1, static_cast<int>(length * scale)); };
    return pixels->scale_simple(scaled(pixels->get_width()), scaled(pixels->get_height()), Gdk::INTERP_BILINEAR);
}

Glib::ustring first_line(const Glib::ustring& text) {
    return text.substr(0, text.find('\n'));
}

Glib::ustring in_one_line(const Glib::ustring& lines) {
    std::string text = lines;
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

Glib::ustring photo_comment(const std::string& album, const std::string& name) {
    std::string text;
    if (!loadphotocomment(text, album, name)) {
        return {};
    }
    std::erase(text, '\r');
    libutils::chop2(text);
    return to_toolkit(text);
}

Glib::ustring photo_summary(const std::string& album, const std::string& name) {
    return to_toolkit(plain_summary(original_path(album, name)));
}

thumbnail_grid_t::cell_t::cell_t() : box(false, 2) {
    picture.set_size_request(picture_width, picture_height);
    box.pack_start(picture, Gtk::PACK_SHRINK);
    for (Gtk::Label* label : {&name_label, &comment_label, &summary_label}) {
        // The picture alone decides how wide a cell is.
        label->set_max_width_chars(1);
        label->set_ellipsize(Pango::ELLIPSIZE_END);
        box.pack_start(*label, Gtk::PACK_SHRINK);
    }
    summary_label.get_style_context()->add_class("dim-label");
    child.add(box);
}

thumbnail_grid_t::thumbnail_grid_t() {
    set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    flow_.set_homogeneous();
    flow_.set_valign(Gtk::ALIGN_START);
    flow_.set_max_children_per_line(100);
    flow_.set_row_spacing(6);
    flow_.set_column_spacing(6);
    flow_.set_selection_mode(Gtk::SELECTION_SINGLE);
    flow_.signal_child_activated().connect(
        [this](Gtk::FlowBoxChild* child) { opened_.emit(static_cast<size_t>(child->get_index())); });
    add(flow_);
    flow_.set_focus_vadjustment(get_vadjustment());
}

void thumbnail_grid_t::set_photos(const std::string& album, const std::vector<std::string>& names) {
    album_ = album;
    cells_.clear();
    for (const std::string& name : names) {
        cells_.push_back(std::make_unique<cell_t>());
        cell_t& cell = *cells_.back();
        cell.name = name;
        cell.name_label.set_text(to_toolkit(name));
        cell.child.get_accessible()->set_name(to_toolkit(name));
        flow_.add(cell.child);
    }
    filled_ = 0;
    flow_.show_all();
    Glib::signal_idle().connect(sigc::mem_fun(*this, &thumbnail_grid_t::fill_some));
}

void thumbnail_grid_t::reload(size_t index) {
    if (index < cells_.size()) {
        fill(*cells_[index]);
    }
}

void thumbnail_grid_t::focus_photo(size_t index) {
    if (index < cells_.size()) {
        flow_.select_child(cells_[index]->child);
        cells_[index]->child.grab_focus();
    }
}

bool thumbnail_grid_t::fill_some() {
    const auto end = std::chrono::steady_clock::now() + work_slice;
    while (filled_ < cells_.size() && std::chrono::steady_clock::now() < end) {
        fill(*cells_[filled_++]);
    }
    return filled_ < cells_.size();
}

void thumbnail_grid_t::fill(cell_t& cell) {
    libgr::image2d_t image;
    const bool loaded = load_exifthumbnail_or_thumbdir(image, album_, cell.name);
    const Glib::RefPtr<Gdk::Pixbuf> pixels = loaded ? convert_to_pixbuf(image) : Glib::RefPtr<Gdk::Pixbuf>();
    const Glib::ustring comment = photo_comment(album_, cell.name);
    const Glib::ustring summary = photo_summary(album_, cell.name);
    cell.comment_label.set_text(first_line(comment));
    if (pixels) {
        cell.picture.set(fit_into_cell(pixels));
        cell.summary_label.set_text(in_one_line(summary));
    } else {
        cell.picture.set_from_icon_name("image-missing", Gtk::ICON_SIZE_DIALOG);
        cell.summary_label.set_text(message_text(msg_photo_not_shown));
    }
    Glib::ustring tip = to_toolkit(cell.name);
    for (const Glib::ustring& part : {comment, summary}) {
        tip += part.empty() ? "" : "\n\n" + part;
    }
    cell.child.set_tooltip_text(tip);
}

}  // namespace taloram
