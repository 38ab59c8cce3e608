#pragma once

#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/dialog.h>
#include <gtkmm/entry.h>
#include <gtkmm/label.h>
#include <gtkmm/menu.h>
#include <gtkmm/menubutton.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/sizegroup.h>
#include <gtkmm/spinbutton.h>

#include <string>

#include "messages/message.h"
#include "widgets/kept_text.h"

namespace taloram {

// Edits the settings: OK stores them in g_global, creates the album directory and writes the settings file. The owner
// runs the dialog until it is answered.
class GlobalOptionDialog : public Gtk::Dialog {
  public:
    // Where the program lies, for the looks, and its name, for the settings file; they must outlive the dialog.
    GlobalOptionDialog(Gtk::Window& parent, const char* progdir, const char* progname);

    void read_from_global();
    void write_to_global();

    // Choose a folder for an entry; it is stored by OK only.
    void button_from_dir();
    void button_album_dir();

  protected:
    void on_response(int response) override;

  private:
    struct text_entry_t {
        Gtk::Entry entry;
        kept_text_t kept;

        [[nodiscard]] bool is_changed() const { return !kept.is_left_alone(entry.get_text()); }
        void set(const std::string& text) { entry.set_text(kept.keep(text)); }
        [[nodiscard]] std::string get() const { return kept.bytes(entry.get_text()); }
    };

    void add_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, Gtk::Widget& widget);
    void add_entry_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, text_entry_t& entry);
    void add_folder_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, text_entry_t& entry,
                        Gtk::Button& button);
    void add_number_rows();
    void add_looks();
    void add_scroller();
    static void choose_folder(text_entry_t& entry, e_message_local_t title);

    const char* program_directory_;
    const char* program_name_;
    std::string mnemonics_;  // letters taken
    Glib::RefPtr<Gtk::SizeGroup> label_widths_;
    Gtk::ScrolledWindow scroller_;
    Gtk::VBox rows_;
    Gtk::HBox from_row_;
    Gtk::Label from_label_;
    text_entry_t from_entry_;
    Gtk::Button from_button_;
    Gtk::HBox album_row_;
    Gtk::Label album_label_;
    text_entry_t album_entry_;
    Gtk::Button album_button_;
    Gtk::HBox size_row_;
    Gtk::Label size_label_;
    Gtk::SpinButton width_spinner_;
    Gtk::SpinButton height_spinner_;
    Gtk::HBox quality_row_;
    Gtk::Label quality_label_;
    Gtk::SpinButton quality_spinner_;
    Gtk::Label items_label_;
    Gtk::SpinButton items_spinner_;
    Gtk::HBox header_row_;
    Gtk::Label header_label_;
    text_entry_t header_entry_;
    Gtk::MenuButton looks_button_;
    Gtk::Menu looks_menu_;
    Gtk::HBox address_row_;
    Gtk::Label address_label_;
    text_entry_t address_entry_;
};

}  // namespace taloram
