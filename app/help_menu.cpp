#include "app/help_menu.h"

#include <gdk/gdkkeysyms.h>
#include <gtkmm/aboutdialog.h>
#include <gtkmm/accellabel.h>
#include <gtkmm/stock.h>
#include <gtkmm/stockitem.h>

#include <algorithm>

#include "messages/message.h"
#include "toolkit/text_encoding.h"
#include "widgets/guide.h"

namespace taloram {

namespace {

// In the toolkit's own translation.
Glib::ustring stock_text(const Gtk::StockID& id) {
    Gtk::StockItem item;
    std::string text = Gtk::StockItem::lookup(id, item) ? item.get_label().raw() : id.get_string().raw();
    std::erase(text, '_');
    return text;
}

}  // namespace

help_menu_t::help_menu_t(Gtk::Window& window) : window_(window) {
    set_image_from_icon_name("open-menu-symbolic", Gtk::ICON_SIZE_BUTTON);
    set_tooltip_text(stock_text(Gtk::Stock::HELP));
    get_accessible()->set_name(stock_text(Gtk::Stock::HELP));
    guide_.set_label(message_text(msg_guide));
    gtk_accel_label_set_accel(GTK_ACCEL_LABEL(guide_.get_child()->gobj()), GDK_KEY_F1, static_cast<GdkModifierType>(0));
    guide_.signal_activate().connect([this] { open_guide(window_); });
    about_.set_label(stock_text(Gtk::Stock::ABOUT));
    about_.signal_activate().connect([this] { show_about(); });
    menu_.append(guide_);
    menu_.append(about_);
    menu_.show_all_children();
    set_popup(menu_);
}

void help_menu_t::show_about() {
    Gtk::AboutDialog about;
    about.set_transient_for(window_);
    about.set_modal();
    about.set_program_name("taloram");
    about.set_version(TALORAM_VERSION);
    about.set_comments(message_text(msg_program_purpose));
    about.set_logo_icon_name("taloram");
    about.set_copyright("\u00a9 the taloram authors");
    about.set_license_type(Gtk::LICENSE_MIT_X11);
    about.run();
}

}  // namespace taloram
