#include "widgets/progress_window.h"

#include <gtkmm/grid.h>
#include <gtkmm/main.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <iterator>
#include <utility>

#include "album/jobs.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"

namespace taloram {

namespace {

constexpr e_message_local_t caption_texts[progress_window_t::shown_stages.size()] = {
    msg_progress_copy, msg_progress_verify, msg_progress_sizes, msg_progress_pages, msg_progress_zoom_pages};

constexpr int spacing = 6;  // pixels

constexpr std::chrono::milliseconds pace_interval{500};  // a text that changes faster can't be read

void set_up_name(Gtk::Label& label) {
    label.set_xalign(0);
    label.set_ellipsize(Pango::ELLIPSIZE_MIDDLE);
}

// Three digits tell enough.
Glib::ustring rate_text(double rate) {
    return Glib::ustring::format(std::fixed, std::setprecision(rate < 1 ? 2 : rate < 100 ? 1 : 0), rate);
}

Glib::ustring duration_text(double seconds) {
    constexpr long minute = 60;
    constexpr long hour = 60 * minute;
    const long whole = std::lround(std::ceil(seconds));
    if (whole < minute) {
        return Glib::ustring::compose("%1 s", whole);
    }
    const long minutes = (whole + minute - 1) / minute;
    return whole < hour ? Glib::ustring::compose("%1 min", minutes)
                        : Glib::ustring::compose("%1 h %2 min", minutes / minute, minutes % minute);
}

}  // namespace

progress_window_t::progress_window_t(Gtk::Window& parent) : Gtk::Dialog("progress window", parent, true) {
    set_size_request(400, 100);
    set_border_width(spacing);
    set_up_name(subject_);
    set_up_name(file_);
    done_.set_xalign(0);
    pause_button_ = add_button(message_text(msg_pause), pause);
    stop_button_ = add_button(message_text(msg_stop), stop);
    signals_.begun.connect(sigc::mem_fun(*this, &progress_window_t::begin_album));
    signals_.worked.connect(sigc::mem_fun(*this, &progress_window_t::note));
    signals_.wish = [this] {
        run_events();
        return wish_;
    };
    get_content_area()->set_spacing(spacing);
    get_content_area()->pack_start(subject_, Gtk::PACK_SHRINK);
    pack_stages();
    get_content_area()->pack_start(file_, Gtk::PACK_SHRINK);
    get_content_area()->pack_start(done_, Gtk::PACK_SHRINK);
    show_all_children();
    show_verification(false);
}

void progress_window_t::pack_stages() {
    auto* table = Gtk::manage(new Gtk::Grid);
    table->set_row_spacing(spacing);
    table->set_column_spacing(spacing);
    for (size_t i = 0; i < shown_stages.size(); ++i) {
        const stage_t stage = shown_stages[i];
        captions_[i].set_text(message_text(caption_texts[i]));
        captions_[i].set_xalign(0);
        bars_[i].get_accessible()->set_name(message_text(caption_texts[i]));
        bars_[i].set_hexpand(true);
        bars_[i].set_valign(Gtk::ALIGN_CENTER);
        table->attach(captions_[i], 0, static_cast<int>(i), 1, 1);
        table->attach(bars_[i], 1, static_cast<int>(i), 1, 1);
        signals_.of(stage).connect([this, stage](double fraction) { set_progress(stage, fraction); });
    }
    get_content_area()->pack_start(*table, Gtk::PACK_SHRINK);
}

void progress_window_t::show_stage(stage_t stage, bool shown) {
    captions_.at(index_of(stage)).set_visible(shown);
    bars_.at(index_of(stage)).set_visible(shown);
}

void progress_window_t::show_verification(bool shown) {
    show_stage(stage_t::verify, shown);
}

void progress_window_t::show_check() {
    is_check_ = true;
    for (const stage_t stage : shown_stages) {
        show_stage(stage, stage == stage_t::verify);
    }
}

size_t progress_window_t::index_of(stage_t stage) const {
    return static_cast<size_t>(std::find(shown_stages.begin(), shown_stages.end(), stage) - shown_stages.begin());
}

void progress_window_t::begin(const Glib::ustring& subject, std::chrono::milliseconds patience) {
    subject_.set_text(subject);
    show_files({});
    pace_ = {};
    set_wish(wish_t::go_on);
    show_from_ = clock_t::now() + patience;
    if (patience.count() != 0) {
        realize();  // what grabs needs a window, if not on the screen
        add_modal_grab();
    }
    g_workers.idle = [this] { run_events(); };
    run_events();
}

void progress_window_t::run_events() {
    if (show_from_ && clock_t::now() >= *show_from_) {
        show_from_.reset();
        remove_modal_grab();
        present();
        stop_button_->grab_focus();
    }
    if (clock_t::now() >= pace_shown_ + pace_interval) {
        show_pace();
    }
    run_pending_events();
}

void progress_window_t::begin_album(const std::string& path, const std::vector<files_t>& files) {
    subject_.set_text(to_toolkit(path));
    show_files(files);
    run_events();
}

void progress_window_t::show_files(const std::vector<files_t>& files) {
    pace_.note({}, clock_t::now());
    names_.clear();
    std::transform(files.begin(), files.end(), std::back_inserter(names_),
                   [](const files_t& file) { return file.filename; });
    file_.set_text(names_.empty() ? Glib::ustring() : to_toolkit(names_.front()));
    done_.set_text("");
    for (Gtk::ProgressBar& bar : bars_) {
        bar.set_fraction(0);
    }
}

void progress_window_t::end() {
    g_workers.idle = nullptr;
    if (std::exchange(show_from_, std::nullopt)) {
        remove_modal_grab();
    }
    for (const stage_t stage : shown_stages) {
        show_stage(stage, stage != stage_t::verify);
    }
    is_check_ = false;
    hide();
}

void progress_window_t::set_progress(stage_t stage, double fraction) {
    const double shown = std::min(fraction, 1.0);
    Gtk::ProgressBar& bar = bars_.at(index_of(stage));
    bar.set_fraction(shown);
    show_file(stage, shown);
    bar.queue_draw();
    run_events();
}

void progress_window_t::note(const work_t& work) {
    pace_.note(work, clock_t::now());
    run_events();
}

void progress_window_t::show_pace() {
    pace_shown_ = clock_t::now();
    if (wish_ == wish_t::go_on) {
        const Glib::ustring text = pace_text(pace_, pace_shown_);
        done_.set_text(text);
        bars_.at(index_of(pace_.work().stage)).get_accessible()->set_description(text);
    }
}

void progress_window_t::set_wish(wish_t wish) {
    const auto now = clock_t::now();
    if (wish_ == wish_t::hold) {
        pace_.held(now - held_since_);
    }
    wish_ = wish;
    held_since_ = now;
    pause_button_->set_label(message_text(wish == wish_t::hold ? msg_continue : msg_pause));
    pause_button_->set_sensitive(wish != wish_t::stop);
    stop_button_->set_sensitive(wish != wish_t::stop);
    done_.set_text(wish == wish_t::go_on ? Glib::ustring()
                                         : message_text(wish == wish_t::hold ? msg_paused : msg_stopping));
}

// The engine tells which part is done: what it works on now is the file behind that part.
void progress_window_t::show_file(stage_t stage, double fraction) {
    const auto done = static_cast<size_t>(std::lround(fraction * static_cast<double>(names_.size())));
    const bool by_file = stage <= stage_t::sizes;
    if (by_file && done < names_.size()) {
        file_.set_text(to_toolkit(names_[done]));
    } else {
        file_.set_text("");
    }
}

void progress_window_t::on_response(int response) {
    if (response == pause) {
        set_wish(wish_ == wish_t::hold ? wish_t::go_on : wish_t::hold);
    } else if (wish_ != wish_t::stop && !is_asking_ && get_mapped()) {
        ask_to_stop();
    }
}

void progress_window_t::ask_to_stop() {
    is_asking_ = true;
    if (is_check_ || ask_yes_no(*this, msg_stop_work)) {
        set_wish(wish_t::stop);
    }
    is_asking_ = false;
}

// The toolkit tells the dialog's response before.
bool progress_window_t::on_delete_event(GdkEventAny* /*event*/) {
    return true;
}

Glib::ustring pace_text(const work_pace_t& pace, std::chrono::steady_clock::time_point now) {
    const work_t& work = pace.work();
    const bool is_photos = work.stage == stage_t::sizes;
    const std::optional<double> rate = pace.files_a_second();
    const std::optional<double> left = pace.seconds_left(now);
    if (work.files == 0) {
        return "";
    }
    if (!rate || !left || work.files_done == work.files) {
        return Glib::ustring::compose(message_text(is_photos ? msg_photo_count : msg_file_count), work.files_done,
                                      work.files);
    }
    return Glib::ustring::compose(message_text(is_photos ? msg_photo_pace : msg_file_pace), work.files_done, work.files,
                                  rate_text(*rate), duration_text(*left));
}

void run_pending_events() {
    while (Gtk::Main::events_pending()) {
        // Outside any main loop the toolkit answers as if it had been asked to quit.
        if (Gtk::Main::iteration(false) && Gtk::Main::level() > 0) {
            std::exit(EXIT_SUCCESS);
        }
    }
}

}  // namespace taloram
