#pragma once

#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/progressbar.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "album/progress.h"
#include "widgets/work_pace.h"

namespace taloram {

// Shows a long operation of the engine: a bar with a caption for each stage, how much is done and how long it will
// take, and buttons to pause and to stop. Closing is asking to stop. While it is shown it is modal and in front, so
// that nothing else can be started.
class progress_window_t : public Gtk::Dialog {
  public:
    // Its own responses.
    enum response_t { pause = 0, stop = 1 };

    static constexpr std::array shown_stages{stage_t::copy, stage_t::verify, stage_t::sizes, stage_t::pages,
                                             stage_t::zoom_pages};

    explicit progress_window_t(Gtk::Window& parent);

    // Connected to the window; valid while it lives. For the operations of album/apart.h, which leave this process
    // free to show the window, or those of the same names.
    [[nodiscard]] progress_signals_t& signals() { return signals_; }

    // Resets and shows the window; `subject` is what is worked on. What is mostly done within `patience` is spared a
    // window that flashes up: until then nothing is shown, and the other windows take no input.
    void begin(const Glib::ustring& subject, std::chrono::milliseconds patience = {});
    void end();

    // The bar for the comparison of an import that verifies; hidden otherwise, and after end().
    void show_verification(bool shown);

    // The bar of the comparison alone, until end(): of a check, which leaves nothing undone and stops without a
    // question.
    void show_check();

    // Moves a stage's bar to min(fraction, 1) and runs the toolkit's pending events. When the main loop was asked to
    // quit meanwhile, the process ends with status 0.
    void set_progress(stage_t stage, double fraction);

  protected:
    bool on_delete_event(GdkEventAny* event) override;
    void on_response(int response) override;

  private:
    using clock_t = std::chrono::steady_clock;

    void pack_stages();
    void show_stage(stage_t stage, bool shown);
    void run_events();
    void begin_album(const std::string& path, const std::vector<files_t>& files);
    void show_files(const std::vector<files_t>& files);
    void show_file(stage_t stage, double fraction);
    void note(const work_t& work);
    void show_pace();
    void set_wish(wish_t wish);
    void ask_to_stop();
    [[nodiscard]] size_t index_of(stage_t stage) const;

    progress_signals_t signals_;
    wish_t wish_ = wish_t::go_on;
    bool is_asking_ = false;
    bool is_check_ = false;
    std::optional<clock_t::time_point> show_from_;  // while it waits for that
    clock_t::time_point held_since_;
    clock_t::time_point pace_shown_;
    work_pace_t pace_;
    std::vector<std::string> names_;  // of the files that the stages count
    Gtk::Label subject_;
    Gtk::Label file_;
    Gtk::Label done_;  // and how long it will take
    Gtk::Button* pause_button_ = nullptr;
    Gtk::Button* stop_button_ = nullptr;
    std::array<Gtk::Label, shown_stages.size()> captions_;
    std::array<Gtk::ProgressBar, shown_stages.size()> bars_;
};

// How far work has come and when it will be done, as a text for the user in the form of the process's locale.
[[nodiscard]] Glib::ustring pace_text(const work_pace_t& pace, std::chrono::steady_clock::time_point now);

// Runs the toolkit's pending events one by one. When a main loop runs and was asked to quit, the process ends with
// status 0.
void run_pending_events();

}  // namespace taloram
