#include "dialogs/view_album_dialog.h"

#include <gdk/gdkkeysyms.h>
#include <glibmm/markup.h>

#include <algorithm>
#include <chrono>

#include "album/album_layout.h"
#include "album/apart.h"
#include "dialogs/originals_dialog.h"
#include "dialogs/text_input_dialog.h"
#include "libutils/diagnostics.h"
#include "toolkit/text_encoding.h"
#include "widgets/browser.h"
#include "widgets/message_box.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int gap = 6;           // pixels between widgets
constexpr int side_width = 240;  // pixels, of the panel beside the large picture
constexpr std::chrono::milliseconds patience{300};

// Text beside the large picture.
void make_side_text(Gtk::Label& label) {
    label.set_line_wrap();
    label.set_line_wrap_mode(Pango::WRAP_WORD_CHAR);
    label.set_xalign(0);
    label.set_max_width_chars(1);
    label.set_selectable();
    label.set_can_focus(false);
}

}  // namespace

ViewAlbumDialog::ViewAlbumDialog(Gtk::Window& parent, const std::string& album,
                                 const std::string& /*program_directory*/)
    : Gtk::Dialog("", parent, true), album_(album), progress_(*this) {
    add_quit_keys(*this);
    make_viewer_window(*this, parent, "album viewer", 1180, 700);
    static_cast<void>(end_begun_turns(album));
    list_files();
    texts_.load(album);
    set_title(texts_.title.get_text());
    make_overview();
    make_photo_page();
    pages_.add(overview_);
    pages_.add(photo_page_);
    get_content_area()->set_spacing(gap);
    get_content_area()->pack_start(pages_);

    label_button(page_button_, msg_browser, sigc::mem_fun(*this, &ViewAlbumDialog::open_page));
    label_button(close_button_, msg_close,
                 sigc::bind(sigc::mem_fun(*this, &Gtk::Dialog::response), Gtk::RESPONSE_CLOSE));
    label_button(check_button_, msg_check_originals, [this] { show_originals_check(*this, progress_, album_); });
    get_action_area()->add(check_button_);
    get_action_area()->add(page_button_);
    get_action_area()->add(close_button_);

    view_.signal_changed().connect(sigc::mem_fun(*this, &ViewAlbumDialog::photo_changed));
    view_.set_photos(album_, names_);
    grid_.signal_opened().connect(sigc::mem_fun(*this, &ViewAlbumDialog::open_photo));
    grid_.set_photos(album_, names_);
    show_all_children();
    grid_.focus_photo(0);
}

// An album that can't be listed to its end is not shown as if what was found were all.
void ViewAlbumDialog::list_files() {
    for (const unlisted_t& unlisted : {list_photos(names_, album_), list_movies(movie_names_, album_)}) {
        if (unlisted) {
            const std::string line = unlisted.path + ": " + unlisted.reason.message();
            libutils::report(line);
            unread_ = to_toolkit(line);
        }
    }
    if (!unread_.empty()) {
        names_.clear();
        movie_names_.clear();
    }
}

void ViewAlbumDialog::label_button(Gtk::Button& button, e_message_local_t text, const sigc::slot<void>& action) {
    button.set_label(mnemonic_text(text, letters_));
    button.set_use_underline();
    button.signal_clicked().connect(action);
}

void ViewAlbumDialog::make_overview() {
    overview_.set_spacing(gap);
    overview_.pack_start(texts_.title, Gtk::PACK_SHRINK);
    overview_.pack_start(scrolled_text(texts_.head), Gtk::PACK_SHRINK);
    make_movies();
    if (names_.empty()) {
        empty_.set_text(unread_.empty() ? message_text(msg_no_photos)
                                        : message_text(msg_album_unreadable) + "\n" + unread_);
        empty_.set_line_wrap();
        overview_.pack_start(empty_);
    } else {
        overview_.pack_start(grid_);
    }
    overview_.pack_start(scrolled_text(texts_.last), Gtk::PACK_SHRINK);
}

void ViewAlbumDialog::make_movies() {
    for (const std::string& movie : movie_names_) {
        movies_.push_back(std::make_unique<Gtk::Button>(to_toolkit(movie)));
        Gtk::Button& button = *movies_.back();
        button.set_image_from_icon_name("video-x-generic", Gtk::ICON_SIZE_BUTTON);
        button.set_always_show_image();
        button.signal_clicked().connect(
            [this, path = entry_path(entry_path(album_, layout::movie), movie)] { open_with_desktop(*this, path); });
        movie_box_.pack_start(button, Gtk::PACK_SHRINK);
    }
    if (movies_.empty()) {
        return;
    }
    movie_box_.set_spacing(gap);
    auto* const scroller = Gtk::manage(new Gtk::ScrolledWindow);
    scroller->set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_NEVER);
    scroller->set_overlay_scrolling(false);
    scroller->add(movie_box_);
    overview_.pack_start(*scroller, Gtk::PACK_SHRINK);
}

void ViewAlbumDialog::make_photo_page() {
    label_button(overview_button_, msg_all_photos, sigc::mem_fun(*this, &ViewAlbumDialog::back_to_overview));
    label_button(previous_button_, msg_previous, sigc::mem_fun(view_, &photo_view_t::previous));
    label_button(next_button_, msg_next, sigc::mem_fun(view_, &photo_view_t::next));
    label_button(zoom_out_button_, msg_zoom_out, sigc::mem_fun(view_, &photo_view_t::zoom_out));
    label_button(zoom_in_button_, msg_zoom_in, sigc::mem_fun(view_, &photo_view_t::zoom_in));
    label_button(fit_button_, msg_zoom_fit, sigc::mem_fun(view_, &photo_view_t::fit));
    label_button(full_size_button_, msg_zoom_full, sigc::mem_fun(view_, &photo_view_t::one_to_one));
    label_button(full_screen_button_, msg_full_screen, sigc::mem_fun(*this, &ViewAlbumDialog::toggle_full_screen));
    photo_bar_.set_spacing(gap);
    for (Gtk::Widget* widget : std::initializer_list<Gtk::Widget*>{
             &overview_button_, &previous_button_, &next_button_, &position_, &zoom_out_button_, &zoom_in_button_,
             &fit_button_, &full_size_button_, &full_screen_button_}) {
        photo_bar_.pack_start(*widget, Gtk::PACK_SHRINK);
    }
    make_side_panel();
    photo_box_.set_spacing(gap);
    photo_box_.pack_start(view_);
    photo_box_.pack_start(side_, Gtk::PACK_SHRINK);
    photo_page_.set_spacing(gap);
    photo_page_.pack_start(photo_bar_, Gtk::PACK_SHRINK);
    photo_page_.pack_start(photo_box_);
}

void ViewAlbumDialog::make_side_panel() {
    label_button(comment_button_, msg_photo_comment, sigc::mem_fun(*this, &ViewAlbumDialog::show_comment));
    label_button(left_button_, msg_turn_left, sigc::bind(sigc::mem_fun(*this, &ViewAlbumDialog::turn), 3UL));
    label_button(right_button_, msg_turn_right, sigc::bind(sigc::mem_fun(*this, &ViewAlbumDialog::turn), 1UL));
    side_texts_.set_spacing(2 * gap);
    for (Gtk::Label* label : {&name_, &comment_, &summary_}) {
        make_side_text(*label);
        side_texts_.pack_start(*label, Gtk::PACK_SHRINK);
    }
    side_scroller_.set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    side_scroller_.add(side_texts_);
    side_.set_spacing(gap);
    side_.set_size_request(side_width, -1);
    side_.pack_start(side_scroller_);
    for (Gtk::Button* button : {&comment_button_, &left_button_, &right_button_}) {
        side_.pack_start(*button, Gtk::PACK_SHRINK);
    }
}

bool ViewAlbumDialog::shows_photo() const {
    return pages_.get_visible_child() == &photo_page_;
}

void ViewAlbumDialog::open_photo(size_t index) {
    pages_.set_visible_child(photo_page_);
    view_.show_picture(index);
    view_.grab_focus();
}

void ViewAlbumDialog::back_to_overview() {
    if (full_screen_) {
        unfullscreen();
    }
    pages_.set_visible_child(overview_);
    grid_.focus_photo(view_.index());
}

void ViewAlbumDialog::toggle_full_screen() {
    if (full_screen_) {
        unfullscreen();
    } else {
        fullscreen();
    }
}

// The window manager decides whether and when the window covers the screen.
bool ViewAlbumDialog::on_window_state_event(GdkEventWindowState* event) {
    const bool handled = Gtk::Dialog::on_window_state_event(event);
    if ((event->changed_mask & GDK_WINDOW_STATE_FULLSCREEN) != 0) {
        full_screen_ = (event->new_window_state & GDK_WINDOW_STATE_FULLSCREEN) != 0;
        photo_bar_.set_visible(!full_screen_);
        side_.set_visible(!full_screen_);
        get_action_area()->set_visible(!full_screen_);
        set_border_width(full_screen_ ? 0 : gap);
        if (shows_photo()) {
            view_.grab_focus();
        }
    }
    return handled;
}

void ViewAlbumDialog::photo_changed() {
    const size_t index = view_.index();
    const std::string& name = names_[index];
    const Glib::ustring comment = photo_comment(album_, name);
    position_.set_text(std::to_string(index + 1) + " / " + std::to_string(names_.size()));
    name_.set_markup("<b>" + Glib::Markup::escape_text(to_toolkit(name)) + "</b>");
    comment_.set_text(comment);
    comment_.set_visible(!comment.empty());
    summary_.set_text(photo_summary(album_, name));
    comment_button_.set_sensitive(!comment.empty());
    previous_button_.set_sensitive(index != 0);
    next_button_.set_sensitive(index + 1 != names_.size());
}

void ViewAlbumDialog::show_comment() {
    TextInputDialog(*this, album_, names_[view_.index()], true).run();
}

void ViewAlbumDialog::turn(unsigned long count) {
    const std::string& name = names_[view_.index()];
    // A large photograph, or the pages of a large album, take their time.
    const Glib::RefPtr<Gdk::Window> window = get_window();
    if (window) {
        window->set_cursor(Gdk::Cursor::create(get_display(), Gdk::WATCH));
        get_display()->flush();
    }
    progress_.begin(to_toolkit(name), patience);
    const libutils::first_report_t heard;
    const turned_t turned = apart::turn_photos(album_, {name}, count, progress_.signals());
    progress_.end();
    if (window) {
        window->set_cursor();
    }
    view_.reload();
    grid_.reload(view_.index());
    if (turned != turned_t::all && turned != turned_t::stopped) {
        show_failure(*this, turned == turned_t::none ? msg_turn_failed : msg_album_failed, heard.line());
    }
}

void ViewAlbumDialog::open_page() {
    open_in_browser(*this, entry_path(album_, layout::index_page));
}

bool ViewAlbumDialog::on_key_press_event(GdkEventKey* event) {
    const bool alone = (event->state & (GDK_MOD1_MASK | GDK_SUPER_MASK)) == 0;
    if (alone && shows_photo() && photo_key(event->keyval, (event->state & GDK_CONTROL_MASK) != 0)) {
        return true;
    }
    return Gtk::Dialog::on_key_press_event(event);
}

bool ViewAlbumDialog::photo_key(guint key, bool control) {
    if (key == GDK_KEY_F11 || (key == GDK_KEY_Escape && full_screen_)) {
        toggle_full_screen();
        return true;
    }
    if (key == GDK_KEY_Escape) {
        back_to_overview();
        return true;
    }
    return view_.take_key(key, control);
}

}  // namespace taloram
