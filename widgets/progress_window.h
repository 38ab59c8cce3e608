#pragma once

#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/progressbar.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "album/progress.h"

namespace taloram {

// Shows a long operation of the engine: four bars, one for each stage of an import without the comparison, with
// captions. While it is shown it is modal and in front, so that nothing else can be started; it can't be closed, since
// the engine has nowhere to stop.
class progress_window_t : public Gtk::Dialog {
  public:
    static constexpr std::array shown_stages{stage_t::copy, stage_t::sizes, stage_t::pages, stage_t::zoom_pages};

    explicit progress_window_t(Gtk::Window& parent);

    // Connected to the bars; valid while the window lives.
    [[nodiscard]] progress_signals_t& signals() { return signals_; }

    // Resets the bars and shows the window; `subject` is what is worked on. What is mostly done within `patience` is
    // spared a window that flashes up: until then nothing is shown, and no event is taken.
    void begin(const Glib::ustring& subject, std::chrono::milliseconds patience = {});
    void end();

    // Moves a stage's bar to min(fraction, 1) and runs the toolkit's pending events. When the main loop was asked to
    // quit meanwhile, the process ends with status 0.
    void set_progress(stage_t stage, double fraction);

  protected:
    bool on_delete_event(GdkEventAny* event) override;

  private:
    void run_events();
    void begin_album(const std::string& path, const std::vector<files_t>& files);
    void show_files(const std::vector<files_t>& files);
    void show_file(stage_t stage, double fraction);

    progress_signals_t signals_;
    std::optional<std::chrono::steady_clock::time_point> show_from_;  // while it waits for that
    std::vector<std::string> names_;                                  // of the files that the stages count
    Gtk::Label subject_;
    Gtk::Label file_;
    std::array<Gtk::Label, shown_stages.size()> captions_;
    std::array<Gtk::ProgressBar, shown_stages.size()> bars_;
};

// Runs the toolkit's pending events one by one. When a main loop runs and was asked to quit, the process ends with
// status 0.
void run_pending_events();

}  // namespace taloram
