#pragma once

#include <map>
#include <string>
#include <vector>

#include "toolkit/picture_series.h"
#include "widgets/upright_photo.h"

namespace taloram {

// Shows one photograph of a list large. It decodes the smallest size that fills what is seen; when nothing else is to
// do, also the next and the previous photograph, and holds no other. A photograph that can't be decoded is shown by its
// name; going on works.
class photo_view_t : public picture_series_t {
  public:
    void set_photos(const std::string& album, const std::vector<std::string>& names);

    void show_picture(size_t index) override;
    [[nodiscard]] size_t count() const override { return names_.size(); }

    // Decodes the photograph again, whose files have changed.
    void reload();

    // The decoded picture's file and surface; "" and null before the widget is drawn and for a broken photograph.
    [[nodiscard]] std::string shown_file() const;
    [[nodiscard]] Cairo::RefPtr<Cairo::ImageSurface> shown_picture() const;
    [[nodiscard]] size_t decoded_count() const { return photos_.size(); }

    // After another photograph came up.
    [[nodiscard]] sigc::signal<void>& signal_changed() { return changed_; }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override;
    [[nodiscard]] const shown_picture_t* shown() const override;

  private:
    // A photograph of the list with its one decoded size.
    struct photo_t {
        std::vector<photo_size_t> sizes;  // those that were not found broken, the smallest first
        size_t decoded = 0;               // index in `sizes`
        shown_picture_t picture;

        void measure();  // the largest size counts as the full one
    };

    [[nodiscard]] const photo_t* current() const;
    // Looks a photograph up, or finds its files and decodes it for the widget.
    const photo_t& decode(size_t index);
    static void decode_size(photo_t& photo, double zoom);
    [[nodiscard]] bool work_ahead();
    void plan_work();

    std::string album_;
    std::vector<std::string> names_;
    std::map<size_t, photo_t> photos_;  // the one shown and its neighbours
    sigc::connection work_;
    sigc::signal<void> changed_;
};

}  // namespace taloram
