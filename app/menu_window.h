#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/table.h>
#include <gtkmm/textview.h>
#include <gtkmm/window.h>

#include <string>
#include <vector>

#include "album/book_entries.h"
#include "settings/message.h"

namespace taloram {

// The main window: the albums and books of the album directory, and the way to everything else.
class MenuWindow : public Gtk::Window {
  public:
    // Loads the catalogue and the settings, which the command line then overrides for this run. The process ends with
    // status 0 when the settings dialog of a first start left no settings file, or the command line asks for help.
    MenuWindow(int argc, char** argv);

    // Lists the album directory anew. False when it can't be listed.
    [[nodiscard]] bool make_items();

    void on_btn_clicked_run_browser();
    void on_btn_clicked_optionsetting();
    void on_btn_clicked_edit();
    void on_btn_clicked_move();
    void on_btn_clicked_delete();
    void on_btn_clicked_close();
    void on_btn_clicked_itembutton(size_t index);
    void on_btn_clicked_talovue3(size_t index);

  private:
    // One listed subdirectory.
    struct item_t {
        bool is_album = false;
        std::string path;
        Gtk::Label name_label;
        Gtk::Button open_button;
        Gtk::Button viewer_button;  // shown for albums only
        Gtk::Label count_label;
        Gtk::Label title_label;
        Gtk::Label head_label;
    };

    void load_settings();
    void apply_command_line();
    void pack_widgets();
    void set_up_buttons();
    void refresh();
    void show_comments();
    void fill_item(item_t& item, const book_entry_t& entry);
    void attach_item(size_t index);
    void show_advice(e_message_local_t text);
    void table_size_allocate(Gdk::Rectangle& allocation);

    int argc_;
    char** argv_;
    std::string program_directory_;  // ends in "/", or is empty
    std::string library_directory_;  // of the catalogue
    std::string program_name_;
    Gtk::VBox box_;
    Gtk::Label title_label_;
    Gtk::TextView head_view_;
    Gtk::TextView last_view_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Table table_{1, 1, false};
    Gtk::Label advice_;  // in place of an empty list
    std::vector<item_t> items_;
    Gtk::HBox button_row_;
    Gtk::Button browser_button_;
    Gtk::Button option_button_;
    Gtk::Button edit_button_;
    // Wait for the features behind them and are not shown.
    Gtk::Button move_button_;
    Gtk::Button delete_button_;
    Gtk::Button close_button_;
};

}  // namespace taloram
