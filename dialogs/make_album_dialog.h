#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <list>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "widgets/comment_fields.h"
#include "widgets/kept_text.h"
#include "widgets/photo_grid.h"

namespace taloram {

// Lets the user choose what goes into a new album: source directory, name, files with their turns, texts. It only
// collects; the caller makes the album. The files are listed as soon as the dialog is on the screen, whenever the
// source directory was changed, and on request.
class MakeAlbumDialog : public Gtk::Dialog {
  public:
    // `bookdir` must outlive the dialog.
    MakeAlbumDialog(Gtk::Window& parent, const std::string& from, const std::string& bookdir);
    ~MakeAlbumDialog() override;

    // Paths and texts in the locale's encoding.
    [[nodiscard]] std::string get_from() const;
    // The new album's directory; "" when its name is empty or none.
    [[nodiscard]] std::string get_to() const;
    [[nodiscard]] std::string get_title() const { return texts_.texts().title; }
    [[nodiscard]] std::string begin_comment() const { return texts_.texts().head; }
    [[nodiscard]] std::string last_comment() const { return texts_.texts().last; }
    // Of the source directory that get_from() names: none when it was changed after the listing.
    [[nodiscard]] std::vector<files_t> selected_files() const;

    // Fill the list and the texts after the entries were left; true when they did. What is listed already is left
    // alone, since a new list has no selection.
    bool leave_from(GdkEventFocus* event);
    bool leave_to(GdkEventFocus* event);

    void button_from();
    void button_to();
    void button_invert();
    void button_update();
    void button_image(size_t index);
    void button_rotate(size_t index);
    void table_size_allocate(Gdk::Rectangle& allocation);

  protected:
    void on_map() override;

  private:
    // What is on the screen of a file.
    struct cell_t : photo_cell_t {
        cell_t(MakeAlbumDialog& owner, size_t place);
        [[nodiscard]] std::vector<Gtk::Widget*> widgets() override;
        void fill() override;

        MakeAlbumDialog& dialog;
        size_t index;
        choice_button_t select;
        Gtk::Label label;
    };

    void set_up_widgets();
    void pack();
    void pack_texts(Gtk::Box& area);
    void connect();

    [[nodiscard]] bool is_listed() const;
    bool list_source();
    [[nodiscard]] cell_t* find_cell(size_t index) const;
    bool load_album_texts();
    void fill_texts(const comment_texts_t& found, const unread_text_t& unread);
    [[nodiscard]] bool choose_folder(std::string& folder, e_message_local_t title, const std::string& start);

    const std::string& bookdir_;
    std::string mnemonics_;  // letters taken
    kept_text_t from_;
    Gtk::HBox from_row_;
    Gtk::HBox to_row_;
    Gtk::Label from_label_;
    Gtk::Label to_label_;
    Gtk::Entry from_entry_;
    Gtk::Entry to_entry_;
    Gtk::Button from_button_;
    Gtk::Button to_button_;
    Gtk::Label table_caption_;
    Gtk::Label notice_;  // stands for an empty table, or tells of a text that can't be read
    Gtk::ScrolledWindow scroller_;
    Gtk::Table table_;
    Gtk::HBox button_row_;
    Gtk::Button invert_button_;
    Gtk::Button update_button_;
    comment_fields_t texts_;
    std::list<std::string> file_names_;
    std::vector<photo_choice_t> items_;
    scrolled_grid_t grid_;

    bool is_complete_ = false;  // the list is that of listed_from_
    std::string listed_from_;
    std::string loaded_to_;                   // the album whose texts were looked for
    std::vector<sigc::connection> on_leave_;  // of the entries
};

}  // namespace taloram
