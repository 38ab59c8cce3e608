#pragma once

#include <string>

#include "toolkit/text_encoding.h"
#include "widgets/single_line.h"

namespace taloram {

// A text or path that a widget shows. As long as the user leaves it alone it goes back byte for byte, also where the
// locale can't show all of it.
class kept_text_t {
  public:
    // Takes the bytes and gives what the widget is to show.
    [[nodiscard]] Glib::ustring keep(const std::string& text) {
        text_ = text;
        shown_ = to_toolkit(text);
        return shown_;
    }

    // An entry shows a path's line ends as blanks.
    [[nodiscard]] bool is_left_alone(const Glib::ustring& now) const {
        return now.raw() == shown_.raw() || now.raw() == on_one_line(shown_).raw();
    }

    // The bytes behind what the widget shows `now`.
    [[nodiscard]] std::string bytes(const Glib::ustring& now) const {
        return is_left_alone(now) ? text_ : from_toolkit(now);
    }

  private:
    std::string text_;
    Glib::ustring shown_;
};

}  // namespace taloram
