#include "dialogs/text_input_dialog.h"

#include <gtkmm/stock.h>

#include <optional>

#include "album/texts/comment_store.h"
#include "libutils/diagnostics.h"
#include "widgets/message_box.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

TextInputDialog::TextInputDialog(Gtk::Window& parent, const std::string& album, const std::string& name, bool readonly)
    : Gtk::Dialog(to_toolkit(name), parent, true), album_(album), name_(name) {
    constexpr int width = 320;   // pixels
    constexpr int height = 200;  // pixels
    set_size_request(width, height);
    std::optional<std::string> comment;
    const unread_text_t unread = load_photo_comment(comment, album_, name_);
    if (unread) {
        report_unread(unread);
        show_error(parent, to_toolkit(unread.path + ": " + unread.reason.message()));
        readonly = true;  // what nobody saw must not be replaced
    }
    if (!comment) {
        libutils::report(name_, ": loadphotocomment() failed.");
    }
    text_ = comment.value_or("");
    set_text(text_);
    view_.set_editable(!readonly);
    view_.set_cursor_visible(!readonly);
    view_.get_accessible()->set_name(to_toolkit(name));
    get_content_area()->pack_start(framed_text(view_, height / 2), Gtk::PACK_EXPAND_WIDGET);

    if (!readonly) {
        add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
        add_button(Gtk::Stock::SAVE, response_save);
    }
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(readonly ? Gtk::RESPONSE_CANCEL : Gtk::RESPONSE_OK);
    add_window_keys(*this);
    show_all_children();
}

std::string TextInputDialog::get_text() {
    return shown_.bytes(view_.get_buffer()->get_text(true));
}

void TextInputDialog::set_text(const std::string& text) {
    view_.get_buffer()->set_text(shown_.keep(text));
}

void TextInputDialog::on_response(int response) {
    Gtk::Dialog::on_response(response);
    if (response == Gtk::RESPONSE_OK || response == response_save) {
        save();
    } else if (response == response_revert) {
        set_text(text_);
    }
}

void TextInputDialog::save() {
    text_ = get_text();
    if (!savephotocomment(text_, album_, name_)) {
        libutils::report(name_, ": save comment failed.");
        show_error(*this, msg_comments_failed);
    }
}

}  // namespace taloram
