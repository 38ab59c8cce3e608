#pragma once

#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>

#include <string>

#include "widgets/comment_fields.h"

namespace taloram {

// Makes a book in a directory, or takes over an existing directory as one: on OK and on Apply it creates the book's
// directory, saves its texts and writes its index page. Without a name, and for the name of an album, it writes
// nothing.
class MakeBookDialog : public Gtk::Dialog {
  public:
    MakeBookDialog(Gtk::Window& parent, const std::string& directory);

    // The book's path as the name entry gives it; the parent directory while that is empty.
    [[nodiscard]] std::string get_bookdir() const;

    // True when the last OK or Apply came without a name.
    [[nodiscard]] bool empty() const { return bookdir_ == directory_; }

    // True when the last OK or Apply wrote the book's texts.
    [[nodiscard]] bool is_made() const { return is_made_; }

    // Fills in the texts that the named directory already has, in place of those of the name before.
    bool button_update();
    void button_directory();
    // Takes the folder that was chosen there as a name in the directory; one that lies elsewhere is refused in a box.
    void take_folder(const std::string& folder);

  protected:
    void on_response(int response) override;

  private:
    void build();
    void store();
    [[nodiscard]] bool save_texts();

    std::string directory_;
    std::string bookdir_;  // taken on the last OK or Apply, as the texts
    comment_texts_t texts_;
    bool is_made_ = false;
    kept_text_t chosen_;  // the chooser's folder, as a name in the directory
    comment_fields_t fields_;
    Gtk::Button directory_button_;
    Gtk::Entry name_;
};

}  // namespace taloram
