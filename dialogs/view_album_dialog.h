#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/buttonbox.h>
#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/stack.h>

#include <memory>
#include <string>
#include <vector>

#include "messages/message.h"
#include "widgets/photo_view.h"
#include "widgets/progress_window.h"
#include "widgets/thumbnail_grid.h"
#include "widgets/viewer_parts.h"

namespace taloram {

// Shows an album: its texts and movies with the grid of its photographs, and in the grid's place one photograph large
// with its comment and summary. Run once. Files change only by the two turn buttons.
class ViewAlbumDialog : public Gtk::Dialog {
  public:
    ViewAlbumDialog(Gtk::Window& parent, const std::string& album, const std::string& program_directory);

  protected:
    bool on_key_press_event(GdkEventKey* event) override;
    bool on_window_state_event(GdkEventWindowState* event) override;

  private:
    void list_files();
    void make_overview();
    void make_movies();
    void make_photo_page();
    void make_side_panel();
    void label_button(Gtk::Button& button, e_message_local_t text, const sigc::slot<void>& action);

    [[nodiscard]] bool shows_photo() const;
    void open_photo(size_t index);
    void back_to_overview();
    void toggle_full_screen();
    void photo_changed();
    void show_comment();
    void turn(unsigned long count);
    void open_page();
    // True when the key meant something to the large picture.
    [[nodiscard]] bool photo_key(guint key, bool control);

    std::string album_;
    std::vector<std::string> names_;  // the photographs
    std::vector<std::string> movie_names_;
    Glib::ustring unread_;  // the directory that can't be listed, and why
    bool full_screen_ = false;
    std::string letters_;  // mnemonics taken

    Gtk::Stack pages_;
    Gtk::VBox overview_;
    viewer_texts_t texts_;
    Gtk::Label empty_;
    std::vector<std::unique_ptr<Gtk::Button>> movies_;
    Gtk::HBox movie_box_;
    thumbnail_grid_t grid_;

    Gtk::VBox photo_page_;
    Gtk::HBox photo_box_;
    Gtk::HBox photo_bar_;
    photo_view_t view_;
    Gtk::VBox side_;
    Gtk::ScrolledWindow side_scroller_;
    Gtk::VBox side_texts_;
    Gtk::Label position_;
    Gtk::Label name_;
    Gtk::Label comment_;
    Gtk::Label summary_;
    Gtk::Button overview_button_;
    Gtk::Button previous_button_;
    Gtk::Button next_button_;
    Gtk::Button zoom_out_button_;
    Gtk::Button zoom_in_button_;
    Gtk::Button fit_button_;
    Gtk::Button full_size_button_;
    Gtk::Button full_screen_button_;
    Gtk::Button comment_button_;
    Gtk::Button left_button_;
    Gtk::Button right_button_;
    Gtk::Button check_button_;
    Gtk::Button page_button_;
    Gtk::Button close_button_;
    progress_window_t progress_;
};

}  // namespace taloram
