#include "widgets/writer_box.h"

#include <glibmm/main.h>
#include <gtkmm/messagedialog.h>

#include <memory>

#include "toolkit/text_encoding.h"
#include "widgets/progress_window.h"

namespace taloram {

namespace {

constexpr unsigned time_to_stay = 400;  // milliseconds; the engine asks every 100

class writer_box_t : public Gtk::MessageDialog {
  public:
    explicit writer_box_t(const std::string& directory)
        : Gtk::MessageDialog(message_text(msg_other_writer), false, Gtk::MESSAGE_INFO, Gtk::BUTTONS_CANCEL, true) {
        set_title(message_text(msg_message_box));
        set_secondary_text(to_toolkit(directory));
        for (Gtk::Window* window : Gtk::Window::list_toplevels()) {
            if (window->is_active()) {
                set_transient_for(*window);
            }
        }
        show();
    }
    ~writer_box_t() override { end_.disconnect(); }

    [[nodiscard]] bool is_cancelled() const { return is_cancelled_; }
    void stay(const sigc::slot<void>& close) {
        end_.disconnect();
        end_ = Glib::signal_timeout().connect(sigc::bind_return(close, false), time_to_stay);
    }

  protected:
    void on_response(int /*response*/) override { is_cancelled_ = true; }

  private:
    bool is_cancelled_ = false;
    sigc::connection end_;
};

}  // namespace

// The engine does not tell when it goes on: it asks no more.
bool wait_for_writer(const std::string& directory) {
    static std::unique_ptr<writer_box_t> box;
    if (box == nullptr) {
        box = std::make_unique<writer_box_t>(directory);
    }
    box->stay([] { box.reset(); });
    run_pending_events();
    if (box != nullptr && box->is_cancelled()) {
        box.reset();
        return false;
    }
    return true;
}

}  // namespace taloram
