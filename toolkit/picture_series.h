#pragma once

#include <array>
#include <cstddef>

#include "toolkit/picture_area.h"

namespace taloram {

// Shows one picture of a series. Which pictures there are, and what of them is kept, is left to subclasses.
class picture_series_t : public picture_area_t {
  public:
    // An index past the end shows the last. Fitted.
    virtual void show_picture(size_t index) = 0;
    [[nodiscard]] virtual size_t count() const = 0;

    void next() { show_picture(index_ + 1); }
    void previous() { show_picture(index_ == 0 ? 0 : index_ - 1); }
    void first() { show_picture(0); }
    void last() { show_picture(count()); }
    [[nodiscard]] size_t index() const { return index_; }

    // Does what the viewers' keys do to what is seen: another picture, zoom, and with Control moving it. False for a
    // key that means none of this.
    [[nodiscard]] bool take_key(guint key, bool control);

  protected:
    // Makes `index`, or the last one, the current picture.
    void go_to(size_t index);

    // What is probably seen next, then the picture on the other side. At an end one of them is the current one.
    [[nodiscard]] std::array<size_t, 2> neighbours() const;

  private:
    size_t index_ = 0;
    bool forwards_ = true;  // the last move, and so probably the next
};

}  // namespace taloram
