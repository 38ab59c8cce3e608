#include "tests/dialogs/toolkit_driver.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <deque>
#include <utility>

#include "talolib/message.h"
#include "tests/support/fixtures.h"

// The toolkit and its font library keep what they allocate until the process ends.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

namespace test_support {

namespace {

constexpr unsigned tick = 10;             // milliseconds
constexpr unsigned longest_wait = 1'000;  // ticks for which a dialog may wait

struct user_t {
    std::deque<std::function<void(Gtk::Dialog&)>> actions;
    GtkWidget* answered = nullptr;  // the last one, while it is shown
    unsigned waited = 0;            // ticks
    bool acting = false;
    long next = 0;  // where an action that is queued inside another goes: before all that were queued outside
};
user_t user;

Gtk::Dialog* waiting_dialog() {
    GtkWidget* grab = gtk_grab_get_current();
    auto* dialog = grab == nullptr ? nullptr : dynamic_cast<Gtk::Dialog*>(Glib::wrap(grab));
    return dialog != nullptr && dialog->get_mapped() && dialog->get_title() != "progress window" &&
                   !find_all<Gtk::Button>(*dialog).empty()
               ? dialog
               : nullptr;
}

void forget(GtkWidget* dialog, gpointer) {
    if (dialog == user.answered) {
        user.answered = nullptr;
    }
}

void look_at_screen();

// A source does not run inside itself, and actions run nested loops: every look is a source of its own.
void look_again() {
    Glib::signal_timeout().connect_once(sigc::ptr_fun(&look_at_screen), tick);
}

void look_at_screen() {
    look_again();
    Gtk::Dialog* dialog = waiting_dialog();
    if (dialog == nullptr) {
        user.waited = 0;
    } else if (dialog->Gtk::Widget::gobj() != user.answered && !user.actions.empty()) {
        const auto action = std::move(user.actions.front());
        user.actions.pop_front();
        user.next = 0;
        user.answered = dialog->Gtk::Widget::gobj();
        g_signal_connect(user.answered, "unmap", G_CALLBACK(&forget), nullptr);
        user.waited = 0;
        const bool acting = std::exchange(user.acting, true);
        action(*dialog);
        user.acting = acting;
        user.next = 0;
    } else if (++user.waited > longest_wait) {
        ADD_FAILURE() << "nobody answers the dialog " << dialog->get_title();
        user.waited = 0;
        dialog->response(Gtk::RESPONSE_DELETE_EVENT);
    }
}

}  // namespace

bool shows_text(Gtk::Widget& top, const Glib::ustring& text) {
    for (const Gtk::Label* label : find_all<Gtk::Label>(top)) {
        if (label->get_text() == text) {
            return true;
        }
    }
    return false;
}

bool shows_lines(Gtk::Widget& top, const Glib::ustring& first) {
    for (const Gtk::Label* label : find_all<Gtk::Label>(top)) {
        if ((label->get_text() + "\n").find(first + "\n") == 0) {
            return true;
        }
    }
    return false;
}

Gtk::Button* find_button(Gtk::Widget& top, const Glib::ustring& label) {
    for (Gtk::Button* button : find_all<Gtk::Button>(top)) {
        if (button->get_visible() && (shows_text(*button, label) || button->get_tooltip_text() == label ||
                                      button->get_accessible()->get_name() == label)) {
            return button;
        }
    }
    return nullptr;
}

void click(Gtk::Widget& top, const Glib::ustring& label) {
    Gtk::Button* button = find_button(top, label);
    ASSERT_TRUE(button != nullptr && button->is_sensitive()) << "no button to click: " << label;
    button->clicked();
}

void press_key(Gtk::Window& window, guint keyval, GdkModifierType held) {
    GdkEvent* event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(window.get_window()->gobj()));
    event->key.keyval = keyval;
    event->key.state = held;
    GdkKeymapKey* keys = nullptr;
    gint count = 0;
    if (gdk_keymap_get_entries_for_keyval(gdk_keymap_get_for_display(window.get_display()->gobj()), keyval, &keys,
                                          &count)) {
        event->key.hardware_keycode = static_cast<guint16>(keys->keycode);  // bindings go by it
        g_free(keys);
    }
    gdk_event_set_device(event, window.get_display()->get_default_seat()->get_keyboard()->gobj());
    gtk_main_do_event(event);
    gdk_event_free(event);
}

void drop(Gtk::Widget& widget, const std::string& path) {
    const Glib::ustring uri = Glib::filename_to_uri(path);
    const auto clipboard = Gtk::Clipboard::get();
    const auto put = [&uri](Gtk::SelectionData& data, guint /*info*/) { data.set_uris({uri}); };
    clipboard->set({Gtk::TargetEntry("text/uri-list")}, put, [] {});
    const Gtk::SelectionData data = clipboard->wait_for_contents("text/uri-list");
    g_signal_emit_by_name(widget.gobj(), "drag-data-received", nullptr, 0, 0, data.gobj(), 0, 0);
}

void on_next_dialog(std::function<void(Gtk::Dialog&)> action) {
    user.actions.insert(user.acting ? user.actions.begin() + user.next++ : user.actions.end(), std::move(action));
}

void answer_next(const Glib::ustring& text, const Glib::ustring& label) {
    on_next_dialog([text, label](Gtk::Dialog& box) {
        EXPECT_TRUE(shows_lines(box, text)) << text;
        click(box, label);
    });
}

bool all_answered() {
    return std::exchange(user.actions, {}).empty();
}

void settle() {
    while (Gtk::Main::events_pending()) {
        Gtk::Main::iteration(false);
    }
}

void wait_until(const std::function<bool()>& done) {
    static_cast<void>(stderr_of([&] {
        for (int i = 0; i < 500 && !done(); ++i) {
            g_usleep(10'000);
            settle();
        }
    }));
    EXPECT_TRUE(done());
}

}  // namespace test_support

int main(int argc, char** argv) {
    const test_support::temp_dir_t home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("GTK_THEME", "Adwaita", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    unsetenv("LANG");
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DATA_HOME");  // the trash
    testing::InitGoogleMock(&argc, argv);
    Gtk::Main toolkit(argc, argv);
    EXPECT_NE("", talolib::init_message(TALORAM_CATALOGUES "/", "taloram"));
    test_support::look_again();
    int status = 1;
    // Inside a main loop, as handlers run: what asks whether the loop was quit must find one.
    Glib::signal_idle().connect_once([&status] {
        status = RUN_ALL_TESTS();
        Gtk::Main::quit();
    });
    Gtk::Main::run();
    return status;
}
