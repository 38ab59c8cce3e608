#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <list>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "widgets/comment_fields.h"
#include "widgets/photo_grid.h"
#include "widgets/progress_window.h"

namespace taloram {

// Edits an album: its texts, the comment of each photograph, quarter turns. OK and Apply save the texts and bring the
// album up to date.
class EditAlbumDialog : public Gtk::Dialog {
  public:
    EditAlbumDialog(Gtk::Window& parent, const std::string& album);

    // Fills the grid; false when the originals can't be listed to their end, which shows in the grid's place.
    bool make_rows();
    // Loads the album's texts.
    void update_comment();

    void button_text(unsigned long index);
    void button_rotate(unsigned long index);

    // Turns all stored sizes of every photograph whose spinner is not 0; stops at the first failure.
    [[nodiscard]] bool apply_rotate();

    // Every photograph with its quarter turns.
    [[nodiscard]] std::vector<files_t> selected_files() const;

    // Progress of copy, sizes, index page and zoom pages.
    void setProgress1(double fraction) { progress_.set_progress(stage_t::copy, fraction); }
    void setProgress2(double fraction) { progress_.set_progress(stage_t::sizes, fraction); }
    void setProgress3(double fraction) { progress_.set_progress(stage_t::pages, fraction); }
    void setProgress4(double fraction) { progress_.set_progress(stage_t::zoom_pages, fraction); }

    void table_size_allocate(Gdk::Rectangle& allocation);

  protected:
    void on_response(int response) override;

  private:
    // What is on the screen of a photograph.
    struct cell_t : photo_cell_t {
        cell_t(EditAlbumDialog& owner, size_t place);
        [[nodiscard]] std::vector<Gtk::Widget*> widgets() override;
        void fill() override;

        EditAlbumDialog& dialog;
        size_t index;
        bool is_loaded = false;  // the preview
        Gtk::Button text_button;
        Gtk::Label exif_label;
    };

    void pack();
    void show_preview(cell_t& cell) const;
    void save_texts();
    void update_album();

    std::string album_;
    std::string mnemonics_;  // letters taken
    Gtk::HBox box_;
    Gtk::Label notice_;  // stands for an empty table
    Gtk::ScrolledWindow scroller_;
    Gtk::Table table_;
    std::list<std::string> files_;
    std::vector<photo_choice_t> items_;
    scrolled_grid_t grid_;
    comment_fields_t texts_;
    progress_window_t progress_;
    bool updating_ = false;
};

}  // namespace taloram
