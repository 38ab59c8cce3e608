#include "widgets/message_box.h"

#include <gtkmm/buttonbox.h>
#include <gtkmm/label.h>
#include <gtkmm/messagedialog.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/stock.h>
#include <gtkmm/textview.h>

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

Glib::ustring failure_text(e_message_local_t text, const std::string& reason, const std::string& file) {
    Glib::ustring lines = message_text(text);
    const bool tells_file = reason.find(file) != std::string::npos;
    for (const std::string& line : {tells_file ? std::string() : file, reason}) {
        lines += line.empty() ? "" : "\n" + to_toolkit(line);
    }
    return lines;
}

// A text view, so that the lines can be copied.
void add_list(Gtk::MessageDialog& box, e_message_local_t text, const std::vector<std::string>& lines) {
    constexpr int width = 520;   // pixels
    constexpr int height = 240;  // pixels; a longer list scrolls
    constexpr int margin = 6;    // pixels
    Glib::ustring shown;
    for (const std::string& line : lines) {
        shown += (shown.empty() ? "" : "\n") + to_toolkit(line);
    }
    auto* view = Gtk::manage(new Gtk::TextView);
    view->get_buffer()->set_text(shown);
    view->set_editable(false);
    view->set_cursor_visible(false);
    view->set_accepts_tab(false);
    view->set_wrap_mode(Gtk::WRAP_WORD_CHAR);
    view->property_margin() = margin;
    view->get_accessible()->set_name(message_text(text));
    auto* frame = Gtk::manage(new Gtk::ScrolledWindow);
    frame->set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    frame->set_shadow_type(Gtk::SHADOW_IN);
    frame->set_size_request(width, -1);
    frame->set_max_content_height(height);
    frame->set_propagate_natural_height(true);
    frame->add(*view);
    frame->show_all();
    box.get_message_area()->pack_start(*frame, Gtk::PACK_EXPAND_WIDGET);
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
    show_error(parent, failure_text(text, reason, file));
}

bool show_failure_or(Gtk::Window& parent, e_message_local_t text, const std::string& reason, const std::string& file,
                     e_message_local_t other) {
    constexpr int chosen = 1;
    Gtk::MessageDialog box(parent, shortened(failure_text(text, reason, file)), false, Gtk::MESSAGE_ERROR,
                           Gtk::BUTTONS_NONE, true);
    std::string taken = stock_letters({Gtk::Stock::OK});
    box.add_button(mnemonic_text(other, taken), chosen);
    box.add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    return run_box(box, message_text(msg_message_box), Gtk::RESPONSE_OK) == chosen;
}

void show_list(Gtk::Window& parent, e_message_local_t text, const std::vector<std::string>& lines) {
    Gtk::MessageDialog box(parent, message_text(text), false, Gtk::MESSAGE_WARNING, Gtk::BUTTONS_OK, true);
    add_list(box, text, lines);
    run_box(box, message_text(msg_message_box), Gtk::RESPONSE_OK);
}

bool ask_about_list(Gtk::Window& parent, e_message_local_t text, const std::vector<std::string>& lines) {
    Gtk::MessageDialog box(parent, message_text(text), false, Gtk::MESSAGE_WARNING, Gtk::BUTTONS_YES_NO, true);
    add_list(box, text, lines);
    return run_box(box, message_text(msg_message_box), Gtk::RESPONSE_NO) == Gtk::RESPONSE_YES;
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
