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
#include "app/help_menu.h"
#include "messages/message.h"
#include "widgets/row_table.h"

namespace taloram {

// The main window: the albums and books of the album directory, and the way to everything else.
class MenuWindow : public Gtk::Window {
  public:
    // Loads the catalogue and the settings, which the command line then overrides for this run. The process ends with
    // status 0 when the settings dialog of a first start left no settings file, or the command line asks for help.
    MenuWindow(int argc, char** argv);

    // Lists the album directory anew. False when it can't be listed.
    [[nodiscard]] bool make_items();

    // Takes new albums from this directory for as long as the program runs, and says so.
    void take_source(const std::string& directory);

    void on_btn_clicked_run_browser();
    void on_btn_clicked_optionsetting();
    void on_btn_clicked_edit();
    void on_btn_clicked_move();
    void on_btn_clicked_delete();
    void on_btn_clicked_close();
    void on_btn_clicked_itembutton(size_t index);
    void on_btn_clicked_talovue3(size_t index);

  private:
    void load_settings();
    void apply_command_line();
    void pack_widgets();
    void set_up_buttons();
    void refresh();
    void show_comments();
    void show_items();
    void make_row(size_t index);
    void show_advice(e_message_local_t text);
    void show_source();
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
    Gtk::Label advice_;                // in place of an empty list
    std::vector<book_entry_t> items_;  // one for each row; the widgets are those of rows_
    entry_widths_t widths_;
    row_table_t rows_{scroller_, table_, [this](size_t index) { make_row(index); }};
    Gtk::HBox button_row_;
    help_menu_t help_menu_{*this};
    std::string source_;  // that was dropped on the window or given as a card; "" without one
    Gtk::Label source_label_;
    Gtk::Button browser_button_;
    Gtk::Button option_button_;
    Gtk::Button edit_button_;
    // Wait for the features behind them and are not shown.
    Gtk::Button move_button_;
    Gtk::Button delete_button_;
    Gtk::Button close_button_;
};

}  // namespace taloram
