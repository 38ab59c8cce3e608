#pragma once

#include <map>
#include <string>
#include <vector>

#include "toolkit/picture_series.h"
#include "viewer/picture_loader.h"

namespace talovue {

// Shows one picture of a list. The one shown and its two neighbours are kept as the window needs them, and of the one
// shown, once it was zoomed, a larger scale; there is nothing else in memory, however long the list is. One that can't
// be shown stands as its name and the reason.
class picture_view_t : public taloram::picture_series_t {
  public:
    // What is known of the current picture.
    struct facts_t {
        bool known = false;   // false while it is read for the first time
        std::string failure;  // "" when it is shown
        double width = 0;     // of the full size as it is seen, in pixels
        double height = 0;
        uint64_t file_bytes = 0;
        bool damaged = false;  // in one of the sizes that were decoded
        std::string summary;   // shooting data
    };

    picture_view_t();

    void set_pictures(std::vector<picture_t> pictures, size_t first);

    void show_picture(size_t index) override;

    // Turns what is seen, clockwise; kept until the list is replaced.
    void turn_left();
    void turn_right();

    [[nodiscard]] size_t count() const override { return pictures_.size(); }
    [[nodiscard]] std::string name() const { return pictures_[index()].name(); }  // of a list that is not empty
    [[nodiscard]] facts_t facts() const;

    // Pictures decoded and kept, and the size in pixels of the one that is shown, 0 without one: how far the loader is.
    [[nodiscard]] size_t ready_count() const;
    [[nodiscard]] int shown_pixels_width() const;

    // After anything that title or panel show of the current picture may have changed.
    [[nodiscard]] sigc::signal<void>& signal_changed() { return changed_; }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
    void on_size_allocate(Gtk::Allocation& allocation) override;
    [[nodiscard]] const taloram::shown_picture_t* shown() const override;

  private:
    // A loaded picture, fitted, and at most a larger one of the same for a zoom.
    struct entry_t {
        facts_t facts;  // before the turn
        picture_request_t fitted_for;
        taloram::shown_picture_t fitted;
        double detailed_for = 0;  // zoom
        taloram::shown_picture_t detailed;
    };

    [[nodiscard]] bool is_near(size_t index) const { return index + 1 >= this->index() && index <= this->index() + 1; }
    [[nodiscard]] const entry_t* find(size_t index) const;
    [[nodiscard]] unsigned turns_of(size_t index) const;
    [[nodiscard]] bool leave();
    void turn(unsigned count);
    // What to load for a picture: the request that fits it into the widget as it is turned.
    [[nodiscard]] picture_request_t fitted_request(size_t index) const;
    [[nodiscard]] bool is_fitted_enough(size_t index) const;
    [[nodiscard]] bool is_detailed_enough() const;
    void plan();
    void take_loaded();
    void take(size_t index, picture_loader_t::result_t& result);

    std::vector<picture_t> pictures_;
    std::map<size_t, entry_t> entries_;
    std::map<size_t, unsigned> turns_;  // clockwise quarters, 1 to 3
    taloram::shown_picture_t leaving_;  // shown until its successor is there
    bool is_late_ = false;
    sigc::connection late_;
    sigc::signal<void> changed_;
    picture_loader_t loader_;
};

}  // namespace talovue
