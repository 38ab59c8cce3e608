#pragma once

#include <gtkmm/dialog.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/textview.h>

#include <string>

#include "album/sums/originals_check.h"
#include "widgets/progress_window.h"

namespace taloram {

// What a check of the originals found: that all files are as imported and since when there are sums, or what changed,
// is missing or has no sum. Run once.
class OriginalsDialog : public Gtk::Dialog {
  public:
    // `directory` was checked, an album or a book.
    OriginalsDialog(Gtk::Window& parent, const std::string& directory, const originals_check_t& check);

  private:
    Gtk::Label heading_;
    Gtk::Label note_;  // in place of details that are one line
    Gtk::ScrolledWindow scroller_;
    Gtk::TextView details_;
};

// Compares the originals of an album, or of all albums of a book, with their sums, while `progress` is shown, and shows
// what it found.
void show_originals_check(Gtk::Window& parent, progress_window_t& progress, const std::string& directory);

}  // namespace taloram
