#pragma once

#include <gtkmm/dialog.h>
#include <gtkmm/textview.h>

#include <string>

#include "widgets/kept_text.h"

namespace taloram {

// Edits or, read-only, shows the comment of one photograph.
class TextInputDialog : public Gtk::Dialog {
  public:
    static constexpr int response_save = 0;    // saves and ends the run
    static constexpr int response_revert = 1;  // puts the text back that was last loaded or saved

    TextInputDialog(Gtk::Window& parent, const std::string& album, const std::string& name, bool readonly);

    // The view's text in the locale's encoding.
    [[nodiscard]] std::string get_text();
    void set_text(const std::string& text);

  protected:
    void on_response(int response) override;

  private:
    void save();

    std::string album_;
    std::string name_;  // of the photograph's file
    std::string text_;  // as last loaded or saved
    kept_text_t shown_;
    Gtk::TextView view_;
};

}  // namespace taloram
