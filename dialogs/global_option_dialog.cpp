#include "dialogs/global_option_dialog.h"

#include <gtkmm/filechooserdialog.h>
#include <gtkmm/menuitem.h>
#include <gtkmm/stock.h>

#include "libutils/files/directory.h"
#include "settings/looks.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "toolkit/text_encoding.h"
#include "widgets/table_scroller.h"
#include "widgets/window_keys.h"

namespace taloram {

namespace {

constexpr int gap = 6;  // pixels
constexpr int label_characters = 20;
constexpr int entry_characters = 100;
constexpr int size_characters = 50;
constexpr int number_characters = 40;

Glib::RefPtr<Gtk::Adjustment> range(double highest, double step, double page) {
    return Gtk::Adjustment::create(0, 0, highest, step, page);
}

void set_number(Gtk::SpinButton& spinner, uint64_t value) {
    spinner.set_value(static_cast<double>(value));
}

uint64_t get_number(Gtk::SpinButton& spinner) {
    spinner.update();  // takes what was typed and not yet left
    return static_cast<uint64_t>(spinner.get_value());
}

void set_up_spinner(Gtk::SpinButton& spinner, int characters, e_message_local_t name) {
    spinner.set_width_chars(characters);
    spinner.set_numeric(true);
    spinner.set_wrap(false);
    spinner.set_activates_default(true);
    spinner.get_accessible()->set_name(message_text(name));
}

// What a look is like, in the user's language where it is one that comes with the program.
Glib::ustring look_text(const look_t& look) {
    struct text_t {
        const char* name;
        e_message_local_t text;
    };
    constexpr text_t texts[] = {{"bare", msg_look_bare}, {"gallery", msg_look_gallery}, {"plain", msg_look_plain}};
    for (const text_t& text : texts) {
        if (look.name == text.name) {
            return to_toolkit(look.name) + ": " + message_text(text.text);
        }
    }
    return to_toolkit(look.name + ": " + look.description);
}

}  // namespace

GlobalOptionDialog::GlobalOptionDialog(Gtk::Window& parent, const char* progdir, const char* progname)
    : Gtk::Dialog(message_text(msg_options), parent, true),
      program_directory_(progdir),
      program_name_(progname),
      mnemonics_(stock_letters({Gtk::Stock::OK, Gtk::Stock::CANCEL})),
      label_widths_(Gtk::SizeGroup::create(Gtk::SIZE_GROUP_HORIZONTAL)),
      width_spinner_(range(32768, 128, 1)),
      height_spinner_(range(32768, 128, 1)),
      quality_spinner_(range(100, 1, 10)),
      items_spinner_(range(100, 1, 10)) {
    add_folder_row(from_row_, from_label_, msg_source_directory, from_entry_, from_button_);
    add_folder_row(album_row_, album_label_, msg_album_directory, album_entry_, album_button_);
    add_number_rows();
    add_entry_row(header_row_, header_label_, msg_html_header, header_entry_);
    add_looks();
    add_entry_row(address_row_, address_label_, msg_html_address, address_entry_);
    add_scroller();
    from_button_.signal_clicked().connect(sigc::mem_fun(*this, &GlobalOptionDialog::button_from_dir));
    album_button_.signal_clicked().connect(sigc::mem_fun(*this, &GlobalOptionDialog::button_album_dir));
    read_from_global();
    add_button(Gtk::Stock::OK, Gtk::RESPONSE_OK);
    add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    set_default_response(Gtk::RESPONSE_OK);
    add_window_keys(*this);
    show_all_children();
}

void GlobalOptionDialog::add_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, Gtk::Widget& widget) {
    label.set_text_with_mnemonic(mnemonic_text(text, mnemonics_));
    label.set_mnemonic_widget(widget);
    label.set_width_chars(label_characters);
    label.set_xalign(0);
    row.set_spacing(gap);
    row.add(label);
    row.child_property_expand(label) = false;
    row.add(widget);
    if (row.get_parent() == nullptr) {
        label_widths_->add_widget(label);
        rows_.add(row);
    }
}

void GlobalOptionDialog::add_entry_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, text_entry_t& entry) {
    entry.entry.set_width_chars(entry_characters);
    entry.entry.set_activates_default(true);
    entry.entry.get_accessible()->set_name(message_text(text));
    add_row(row, label, text, entry.entry);
}

void GlobalOptionDialog::add_folder_row(Gtk::HBox& row, Gtk::Label& label, e_message_local_t text, text_entry_t& entry,
                                        Gtk::Button& button) {
    add_entry_row(row, label, text, entry);
    button.set_label(mnemonic_text(msg_browse, mnemonics_));
    button.set_use_underline(true);
    button.set_tooltip_text(message_text(text));
    row.add(button);
    row.child_property_expand(button) = false;
}

void GlobalOptionDialog::add_number_rows() {
    set_up_spinner(width_spinner_, size_characters, msg_shrink_size);
    set_up_spinner(height_spinner_, size_characters, msg_shrink_size);
    set_up_spinner(quality_spinner_, number_characters, msg_quality);
    set_up_spinner(items_spinner_, number_characters, msg_items_per_row);
    add_row(size_row_, size_label_, msg_shrink_size, width_spinner_);
    size_row_.add(height_spinner_);
    add_row(quality_row_, quality_label_, msg_quality, quality_spinner_);
    add_row(quality_row_, items_label_, msg_items_per_row, items_spinner_);
}

void GlobalOptionDialog::add_looks() {
    for (const look_t& look : installed_looks(program_directory_)) {
        auto* item = Gtk::manage(new Gtk::MenuItem(look_text(look)));
        item->signal_activate().connect([this, line = look.line] {
            header_entry_.set(line);
            header_entry_.entry.grab_focus();  // Return is OK there
        });
        looks_menu_.append(*item);
    }
    looks_menu_.show_all();
    looks_button_.set_label(mnemonic_text(msg_looks, mnemonics_));
    looks_button_.set_use_underline(true);
    looks_button_.set_popup(looks_menu_);
    looks_button_.set_sensitive(!looks_menu_.get_children().empty());
    header_row_.add(looks_button_);
    header_row_.child_property_expand(looks_button_) = false;
}

// The rows ask for more than a small screen has.
void GlobalOptionDialog::add_scroller() {
    rows_.signal_size_allocate().connect(
        [this](Gtk::Allocation& rows) { follow_table(scroller_, *this, rows, longest_list); });
    scroller_.set_policy(Gtk::POLICY_AUTOMATIC, Gtk::POLICY_AUTOMATIC);
    scroller_.add(rows_);
    scroller_.property_margin() = 6;
    rows_.set_spacing(4);
    get_content_area()->pack_start(scroller_, Gtk::PACK_EXPAND_WIDGET);
}

void GlobalOptionDialog::read_from_global() {
    from_entry_.set(g_global.from);
    album_entry_.set(g_global.album);
    set_number(width_spinner_, g_global.shrink_width);
    set_number(height_spinner_, g_global.shrink_height);
    set_number(quality_spinner_, g_global.jpeg_compress);
    set_number(items_spinner_, g_global.horizontal_items);
    header_entry_.set(g_global.html_header);
    address_entry_.set(g_global.html_address);
}

void GlobalOptionDialog::write_to_global() {
    // A path of the command line that the user leaves alone stays one for this run.
    if (from_entry_.is_changed()) {
        g_stored_paths.from.reset();
    }
    if (album_entry_.is_changed()) {
        g_stored_paths.album.reset();
    }
    g_global.from = from_entry_.get();
    g_global.album = album_entry_.get();
    g_global.shrink_width = get_number(width_spinner_);
    g_global.shrink_height = get_number(height_spinner_);
    g_global.jpeg_compress = get_number(quality_spinner_);
    g_global.horizontal_items = get_number(items_spinner_);
    g_global.html_header = header_entry_.get();
    g_global.html_address = address_entry_.get();
    libutils::mkdir(g_global.album.c_str());
}

void GlobalOptionDialog::on_response(int response) {
    Gtk::Dialog::on_response(response);
    if (response == Gtk::RESPONSE_OK) {
        write_to_global();
        saveini(program_directory_, program_name_);
    }
}

void GlobalOptionDialog::choose_folder(text_entry_t& entry, e_message_local_t title) {
    Gtk::FileChooserDialog chooser(message_text(title), Gtk::FILE_CHOOSER_ACTION_SELECT_FOLDER);
    chooser.set_current_folder(entry.get());
    chooser.add_button(Gtk::Stock::OPEN, Gtk::RESPONSE_OK);
    chooser.add_button(Gtk::Stock::CANCEL, Gtk::RESPONSE_CANCEL);
    chooser.set_default_response(Gtk::RESPONSE_OK);
    if (chooser.run() == Gtk::RESPONSE_OK && !chooser.get_filename().empty()) {
        entry.set(chooser.get_filename());
    }
}

void GlobalOptionDialog::button_from_dir() {
    choose_folder(from_entry_, msg_source_directory);
}

void GlobalOptionDialog::button_album_dir() {
    choose_folder(album_entry_, msg_album_directory);
}

}  // namespace taloram
