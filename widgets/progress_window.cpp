#include "widgets/progress_window.h"

#include <gtkmm/main.h>
#include <gtkmm/table.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

#include "album/jobs.h"
#include "toolkit/text_encoding.h"
#include "widgets/message_box.h"

namespace taloram {

namespace {

constexpr e_message_local_t caption_texts[progress_window_t::shown_stages.size()] = {
    msg_progress_copy, msg_progress_sizes, msg_progress_pages, msg_progress_zoom_pages};

constexpr int spacing = 6;  // pixels

void set_up_name(Gtk::Label& label) {
    label.set_xalign(0);
    label.set_ellipsize(Pango::ELLIPSIZE_MIDDLE);
}

}  // namespace

progress_window_t::progress_window_t(Gtk::Window& parent) : Gtk::Dialog("progress window", parent, true) {
    set_size_request(400, 100);
    set_border_width(spacing);
    set_up_name(subject_);
    set_up_name(file_);

    auto* table = Gtk::manage(new Gtk::Table(static_cast<guint>(shown_stages.size()), 2));
    table->set_spacings(spacing);
    for (guint i = 0; i < shown_stages.size(); ++i) {
        const stage_t stage = shown_stages[i];
        captions_[i].set_text(message_text(caption_texts[i]));
        captions_[i].set_xalign(0);
        bars_[i].get_accessible()->set_name(message_text(caption_texts[i]));
        table->attach(captions_[i], 0, 1, i, i + 1, Gtk::FILL, Gtk::SHRINK);
        table->attach(bars_[i], 1, 2, i, i + 1, Gtk::FILL | Gtk::EXPAND, Gtk::SHRINK);
        signals_.of(stage).connect([this, stage](double fraction) { set_progress(stage, fraction); });
    }
    signals_.begun.connect(sigc::mem_fun(*this, &progress_window_t::begin_album));
    get_content_area()->set_spacing(spacing);
    get_content_area()->pack_start(subject_, Gtk::PACK_SHRINK);
    get_content_area()->pack_start(*table, Gtk::PACK_SHRINK);
    get_content_area()->pack_start(file_, Gtk::PACK_SHRINK);
    show_all_children();
}

void progress_window_t::begin(const Glib::ustring& subject, std::chrono::milliseconds patience) {
    subject_.set_text(subject);
    show_files({});
    show_from_ = std::chrono::steady_clock::now() + patience;
    g_workers.idle = [this] { run_events(); };
    run_events();
}

void progress_window_t::run_events() {
    if (show_from_) {
        if (std::chrono::steady_clock::now() < *show_from_) {
            return;
        }
        show_from_.reset();
        present();
    }
    run_pending_events();
}

void progress_window_t::begin_album(const std::string& path, const std::vector<files_t>& files) {
    subject_.set_text(to_toolkit(path));
    show_files(files);
    run_events();
}

void progress_window_t::show_files(const std::vector<files_t>& files) {
    names_.clear();
    std::transform(files.begin(), files.end(), std::back_inserter(names_),
                   [](const files_t& file) { return file.filename; });
    file_.set_text(names_.empty() ? Glib::ustring() : to_toolkit(names_.front()));
    for (Gtk::ProgressBar& bar : bars_) {
        bar.set_fraction(0);
    }
}

void progress_window_t::end() {
    g_workers.idle = nullptr;
    show_from_.reset();
    hide();
}

void progress_window_t::set_progress(stage_t stage, double fraction) {
    const double shown = std::min(fraction, 1.0);
    const auto index = std::find(shown_stages.begin(), shown_stages.end(), stage) - shown_stages.begin();
    Gtk::ProgressBar& bar = bars_.at(static_cast<size_t>(index));
    bar.set_fraction(shown);
    show_file(stage, shown);
    bar.queue_draw();
    run_events();
}

// The engine tells which part is done: what it works on now is the file behind that part.
void progress_window_t::show_file(stage_t stage, double fraction) {
    const auto done = static_cast<size_t>(std::lround(fraction * static_cast<double>(names_.size())));
    const bool by_file = stage == stage_t::copy || stage == stage_t::sizes;
    if (by_file && done < names_.size()) {
        file_.set_text(to_toolkit(names_[done]));
    } else {
        file_.set_text("");
    }
}

// Workers end with this process. What they were writing has no name yet, so that nothing is left half done.
bool progress_window_t::on_delete_event(GdkEventAny* /*event*/) {
    if (ask_yes_no(*this, msg_stop_work)) {
        std::exit(EXIT_SUCCESS);
    }
    return true;
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
