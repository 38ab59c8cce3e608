#include "widgets/thumbnail_grid.h"

#include <atkmm/object.h>
#include <gdk/gdkkeysyms.h>
#include <glibmm/main.h>
#include <gtkmm/adjustment.h>

#include <algorithm>

#include "album/album_layout.h"
#include "album/texts/comment_store.h"
#include "libutils/text/text.h"
#include "shooting_data/exif_summary.h"
#include "toolkit/text_encoding.h"
#include "widgets/single_line.h"
#include "widgets/thumbnails.h"

namespace taloram {

namespace {

constexpr int picture_width = 192;  // pixels
constexpr int picture_height = 144;

Glib::ustring first_line(const Glib::ustring& text) {
    return text.substr(0, text.find('\n'));
}

}  // namespace

Glib::ustring photo_comment(const std::string& album, const std::string& name) {
    std::optional<std::string> text;
    if (const unread_text_t unread = load_photo_comment(text, album, name)) {
        report_unread(unread);
        return message_text(msg_text_unreadable) + " " + to_toolkit(unread.path + ": " + unread.reason.message());
    }
    std::string shown = text.value_or("");
    std::erase(shown, '\r');
    libutils::chop2(shown);
    return to_toolkit(shown);
}

Glib::ustring photo_summary(const std::string& album, const std::string& name) {
    return to_toolkit(plain_summary(original_path(album, name)));
}

thumbnail_grid_t::cell_t::cell_t(thumbnail_grid_t& owner, size_t place) : grid(owner), index(place), box(false, 2) {
    const Glib::ustring name = to_toolkit(grid.names_[index]);
    name_label.set_text(name);
    picture.set_size_request(picture_width, picture_height);
    box.pack_start(picture, Gtk::PACK_SHRINK);
    for (Gtk::Label* label : {&name_label, &comment_label, &summary_label}) {
        // The picture alone decides how wide a cell is.
        label->set_max_width_chars(1);
        label->set_ellipsize(Pango::ELLIPSIZE_END);
        box.pack_start(*label, Gtk::PACK_SHRINK);
    }
    summary_label.get_style_context()->add_class("dim-label");
    button.add(box);
    button.set_relief(Gtk::RELIEF_NONE);
    button.get_accessible()->set_name(name);
    button.get_style_context()->add_provider(grid.style_, GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    button.signal_clicked().connect([this] { grid.opened_.emit(index); });
    button.signal_key_press_event().connect([this](GdkEventKey* event) { return grid.press_key(*event, index); },
                                            false);
}

void thumbnail_grid_t::cell_t::fill() {
    const std::string& name = grid.names_[index];
    libgr::image2d_t image;
    const bool loaded = load_exifthumbnail_or_thumbdir(image, grid.album_, name);
    const Glib::RefPtr<Gdk::Pixbuf> pixels = loaded ? convert_to_pixbuf(image) : Glib::RefPtr<Gdk::Pixbuf>();
    const Glib::ustring comment = photo_comment(grid.album_, name);
    const Glib::ustring summary = photo_summary(grid.album_, name);
    comment_label.set_text(first_line(comment));
    if (pixels) {
        picture.set(fit_into(pixels, picture_width, picture_height));
        summary_label.set_text(on_one_line(summary));
    } else {
        picture.set_from_icon_name("image-missing", Gtk::ICON_SIZE_DIALOG);
        summary_label.set_text(message_text(msg_photo_not_shown));
    }
    Glib::ustring tip = to_toolkit(name);
    for (const Glib::ustring& part : {comment, summary}) {
        tip += part.empty() ? "" : "\n\n" + part;
    }
    button.set_tooltip_text(tip);
}

thumbnail_grid_t::thumbnail_grid_t()
    : style_(Gtk::CssProvider::create()),
      table_(1, 1),
      cells_(*this, table_, 1, [this](size_t index) { return std::make_unique<cell_t>(*this, index); }) {
    style_->load_from_data("button:focus { background: @theme_selected_bg_color; color: @theme_selected_fg_color; }");
    // As wide as the window gives it, whatever is in the table while that follows.
    set_policy(Gtk::POLICY_EXTERNAL, Gtk::POLICY_AUTOMATIC);
    set_min_content_width(picture_width);
    table_.set_valign(Gtk::ALIGN_START);
}

void thumbnail_grid_t::set_photos(const std::string& album, const std::vector<std::string>& names) {
    album_ = album;
    names_ = names;
    cells_.reset(names_.size(), columns_);
    if (const cell_t* const cell = find_cell(0)) {
        int natural = 0;
        cell->button.get_preferred_width(cell_width_, natural);
    }
}

void thumbnail_grid_t::reload(size_t index) {
    if (cell_t* const cell = find_cell(index)) {
        cell->fill();
    }
}

void thumbnail_grid_t::focus_photo(size_t index) {
    cells_.focus_on(index, 0);
}

thumbnail_grid_t::cell_t* thumbnail_grid_t::find_cell(size_t index) const {
    return dynamic_cast<cell_t*>(cells_.find(index));
}

void thumbnail_grid_t::on_size_allocate(Gtk::Allocation& allocation) {
    Gtk::ScrolledWindow::on_size_allocate(allocation);
    const int width = get_child()->get_allocated_width();
    columns_ = static_cast<size_t>(std::max(width / cell_width_, 1));
    // The table can't be changed while sizes are given out.
    Glib::signal_idle().connect_once(sigc::track_obj([this] { cells_.set_columns(columns_); }, *this),
                                     Glib::PRIORITY_HIGH_IDLE);
}

// True when the key meant something to the photograph that has the focus.
bool thumbnail_grid_t::press_key(const GdkEventKey& event, size_t index) {
    if ((event.state & gtk_accelerator_get_default_mod_mask()) != 0) {
        return false;
    }
    const int height = find_cell(index)->button.get_allocated_height();
    const double page = get_vadjustment()->get_page_size();
    const size_t page_step = std::max(static_cast<size_t>(page / std::max(height, 1)), size_t{1}) * columns_;
    const size_t last = names_.size() - 1;
    const auto back = [index](size_t step) { return index < step ? index : index - step; };
    const auto on = [index, last](size_t step) { return last - index < step ? index : index + step; };
    const bool mirrored = get_direction() == Gtk::TEXT_DIR_RTL;
    struct step_t {
        guint key;
        guint keypad;  // the same on the keypad
        size_t target;
    };
    const step_t steps[] = {
        {GDK_KEY_Left, GDK_KEY_KP_Left, mirrored ? on(1) : back(1)},
        {GDK_KEY_Right, GDK_KEY_KP_Right, mirrored ? back(1) : on(1)},
        {GDK_KEY_Up, GDK_KEY_KP_Up, back(columns_)},
        {GDK_KEY_Down, GDK_KEY_KP_Down, on(columns_)},
        {GDK_KEY_Page_Up, GDK_KEY_KP_Page_Up, index < page_step ? index % columns_ : index - page_step},
        {GDK_KEY_Page_Down, GDK_KEY_KP_Page_Down, std::min(index + page_step, last)},
        {GDK_KEY_Home, GDK_KEY_KP_Home, 0},
        {GDK_KEY_End, GDK_KEY_KP_End, last},
    };
    for (const step_t& step : steps) {
        if (event.keyval == step.key || event.keyval == step.keypad) {
            focus_photo(step.target);
            return true;
        }
    }
    if (event.keyval == GDK_KEY_Return || event.keyval == GDK_KEY_KP_Enter) {
        // At once: the button would show itself pressed for a while first.
        opened_.emit(index);
        return true;
    }
    return false;
}

}  // namespace taloram
