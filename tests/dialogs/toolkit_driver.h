#pragma once

#include <gtkmm.h>

#include <functional>
#include <vector>

// Plays the user in front of real dialogs. The program that links this gets its main(): the toolkit is started, HOME is
// a fresh directory, the locale C.UTF-8, the message catalogue the English one.
namespace test_support {

// Every widget of the type T in `top`, itself included, in the toolkit's order: a table names the last first.
template <typename T>
std::vector<T*> find_all(Gtk::Widget& top) {
    std::vector<T*> found;
    if (auto* self = dynamic_cast<T*>(&top)) {
        found.push_back(self);
    }
    if (auto* container = dynamic_cast<Gtk::Container*>(&top)) {
        for (Gtk::Widget* child : container->get_children()) {
            const std::vector<T*> below = find_all<T>(*child);
            found.insert(found.end(), below.begin(), below.end());
        }
    }
    return found;
}

// The first visible button that reads `label` ("OK" for a stock button, no mnemonic), else has it as its tooltip or its
// accessible name; null without one.
[[nodiscard]] Gtk::Button* find_button(Gtk::Widget& top, const Glib::ustring& label);

// Clicks a button. A test failure when there is none or it is greyed out.
void click(Gtk::Widget& top, const Glib::ustring& label);

[[nodiscard]] bool shows_text(Gtk::Widget& top, const Glib::ustring& text);

// The same for a label that begins with these lines; more may follow.
[[nodiscard]] bool shows_lines(Gtk::Widget& top, const Glib::ustring& first);

// Sends a key to what has the focus in `window`, shortcuts and default button included.
void press_key(Gtk::Window& window, guint keyval, GdkModifierType held = {});

// Drops a file or directory on a widget, as a file manager does.
void drop(Gtk::Widget& widget, const std::string& path);

// Queues `action` for a dialog that will wait for its user: one that is newly shown, or one whose turn it is again
// after another was answered. Actions run in the order they were queued, also in loops nested in other actions; those
// that an action queues come next.
// Progress windows wait for nobody. A dialog that no action is queued for is a test failure
// and, after some seconds, closed.
void on_next_dialog(std::function<void(Gtk::Dialog&)> action);

// The same for a message box: it must show `text`, then its button `label` is clicked.
void answer_next(const Glib::ustring& text, const Glib::ustring& label);

// True when every queued action has run.
[[nodiscard]] bool all_answered();

// Runs the toolkit's pending events.
void settle();

// The same until `done` holds; a test failure when that takes some seconds. What is written to standard error meanwhile
// does not show.
void wait_until(const std::function<bool()>& done);

}  // namespace test_support
