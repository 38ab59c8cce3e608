#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/checkbutton.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>

#include <list>
#include <string>
#include <vector>

#include "album/album_layout.h"
#include "album/import/import.h"
#include "widgets/comment_fields.h"
#include "widgets/kept_text.h"
#include "widgets/source_grid.h"

namespace taloram {

// Lets the user choose what goes into a new album: source directory, name, files with their turns, texts, checks. It
// only collects; the caller makes the album. The files are listed as soon as the dialog is on the screen, whenever the
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
    // What the check buttons say; they are as they were last used.
    [[nodiscard]] import_options_t options() const;
    // Of the source directory that get_from() names: none when it was changed after the listing.
    [[nodiscard]] std::vector<files_t> selected_files() const;

    // Fill the list and the texts after the entries were left; true when they did. What is listed already is left
    // alone, since a new list has no selection.
    bool leave_from(GdkEventFocus* event);
    bool leave_to(GdkEventFocus* event);

    void button_from();
    void button_to();
    void button_invert() { files_.invert(); }
    void button_update();
    void button_image(size_t index) { files_.button_image(index); }
    void button_rotate(size_t index) { files_.button_rotate(index); }
    void table_size_allocate(Gdk::Rectangle& allocation);

  protected:
    void on_map() override;

  private:
    void set_up_widgets();
    void set_up_choices();
    void pack();
    void pack_texts(Gtk::Box& area);
    void connect();

    [[nodiscard]] bool is_listed() const;
    bool list_source();
    bool load_album_texts();
    void show_unread(const unread_text_t& unread);
    void show_notice();
    void show_search();
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
    Gtk::CheckButton verify_button_;
    Gtk::CheckButton leave_out_button_;
    Gtk::Button new_button_;
    comment_fields_t texts_;
    std::list<std::string> file_names_;
    source_grid_t files_;

    bool is_complete_ = false;                           // the list is that of listed_from_
    e_message_local_t empty_list_ = msg_nothing_listed;  // what a list without files says
    std::string listed_from_;
    unread_text_t unread_from_;               // what of its texts can't be read
    std::string loaded_to_;                   // the album whose texts were looked for
    unread_text_t unread_to_;                 // what of those can't be read
    std::vector<sigc::connection> on_leave_;  // of the entries
};

}  // namespace taloram
