#pragma once

#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/progressbar.h>

#include <array>
#include <string>
#include <vector>

#include "album/album_layout.h"

namespace taloram {

// Shows a long operation of the engine: four bars, in the order of its four signals, each with a caption. While it is
// shown it is modal and in front, so that nothing else can be started; it can't be closed, since the engine has nowhere
// to stop.
class progress_window_t : public Gtk::Dialog {
  public:
    // Copy, sizes, index page, zoom pages.
    enum stage_t { copy, sizes, pages, zoom_pages, stage_count };

    explicit progress_window_t(Gtk::Window& parent);

    // The four signals, connected to the bars; valid while the window lives.
    [[nodiscard]] progress_t& signal(stage_t stage) { return signals_[stage]; }

    // Resets the bars and shows the window; `subject` is what is worked on. With the files that the engine is given,
    // the window also shows which of them is at work.
    void begin(const Glib::ustring& subject, const std::vector<files_t>& files = {});
    void end();

    // Moves a bar to min(fraction, 1) and runs the toolkit's pending events. When the main loop was asked to quit
    // meanwhile, the process ends with status 0.
    void set_progress(stage_t stage, double fraction);

  protected:
    bool on_delete_event(GdkEventAny* event) override;

  private:
    void show_file(stage_t stage, double fraction);

    std::array<progress_t, stage_count> signals_;
    std::vector<std::string> names_;  // of the files, may be empty
    Gtk::Label subject_;
    Gtk::Label file_;
    std::array<Gtk::Label, stage_count> captions_;
    std::array<Gtk::ProgressBar, stage_count> bars_;
};

// Runs the toolkit's pending events one by one. When a main loop runs and was asked to quit, the process ends with
// status 0.
void run_pending_events();

}  // namespace taloram
