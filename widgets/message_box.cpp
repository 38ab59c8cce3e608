#include "widgets/message_box.h"

#include <gtkmm/buttonbox.h>
#include <gtkmm/label.h>
#include <gtkmm/messagedialog.h>
#include <gtkmm/stock.h>

#include "toolkit/text_encoding.h"

namespace taloram {

namespace {

constexpr Glib::ustring::size_type longest_text = 600;  // characters; more would push the buttons off the screen

Glib::ustring shortened(const Glib::ustring& text) {
    constexpr auto half = longest_text / 2;
    return text.size() <= longest_text ? text : text.substr(0, half) + "\u2026" + text.substr(text.size() - half);
}

// Paths have no blanks at which a line could break.
void break_long_words(Gtk::MessageDialog& box) {
    for (Gtk::Widget* child : box.get_message_area()->get_children()) {
        if (auto* label = dynamic_cast<Gtk::Label*>(child)) {
            label->set_line_wrap_mode(Pango::WRAP_WORD_CHAR);
        }
    }
}

int run_box(Gtk::MessageDialog& box, const Glib::ustring& title, Gtk::ResponseType preset) {
    box.set_title(title);
    box.set_default_response(preset);
    break_long_words(box);
    return box.run();
}

}  // namespace

void show_error(Gtk::Window& parent, e_message_local_t text) {
    show_error(parent, message_text(text));
}

void show_error(Gtk::Window& parent, const Glib::ustring& text) {
    Gtk::MessageDialog box(parent, shortened(text), false, Gtk::MESSAGE_ERROR, Gtk::BUTTONS_OK, true);
    run_box(box, message_text(msg_message_box), Gtk::RESPONSE_OK);
}

void show_failure(Gtk::Window& parent, e_message_local_t text, const std::string& reason, const std::string& file) {
    Glib::ustring lines = message_text(text);
    const bool tells_file = reason.find(file) != std::string::npos;
    for (const std::string& line : {tells_file ? std::string() : file, reason}) {
        lines += line.empty() ? "" : "\n" + to_toolkit(line);
    }
    show_error(parent, lines);
}

bool ask_yes_no(Gtk::Window& parent, e_message_local_t text) {
    Gtk::MessageDialog box(parent, message_text(text), false, Gtk::MESSAGE_ERROR, Gtk::BUTTONS_YES_NO, true);
    return run_box(box, message_text(msg_message_box), Gtk::RESPONSE_NO) == Gtk::RESPONSE_YES;
}

removal_t ask_to_remove(Gtk::Window& parent, e_message_local_t text, const Glib::ustring& detail) {
    constexpr int trash = 1;
    Gtk::MessageDialog box(parent, message_text(text), false, Gtk::MESSAGE_WARNING, Gtk::BUTTONS_OK_CANCEL, true);
    box.set_secondary_text(shortened(detail));
    std::string letters = stock_letters({Gtk::Stock::OK, Gtk::Stock::CANCEL});
    Gtk::Button& button = *box.add_button(mnemonic_text(msg_move_to_trash, letters), trash);
    if (auto* row = dynamic_cast<Gtk::ButtonBox*>(button.get_parent())) {
        row->set_child_secondary(button);
    }
    switch (run_box(box, message_text(text), Gtk::RESPONSE_CANCEL)) {
        case Gtk::RESPONSE_OK:
            return removal_t::for_good;
        case trash:
            return removal_t::to_trash;
        default:
            return removal_t::none;
    }
}

}  // namespace taloram
