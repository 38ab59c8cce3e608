#pragma once

#include <gtkmm/entry.h>
#include <gtkmm/label.h>
#include <gtkmm/textview.h>

#include <array>
#include <optional>
#include <string>

#include "album/texts/comment_store.h"
#include "messages/message.h"
#include "widgets/kept_text.h"

namespace taloram {

// A label whose mnemonic, new in `taken`, leads to `target`.
[[nodiscard]] Gtk::Label& caption(e_message_local_t text, Gtk::Widget& target, std::string& taken);

// The title, the opening and the closing text of a book, to be edited. A text that the user leaves alone keeps its
// bytes, whatever of them could not be shown.
class comment_fields_t {
  public:
    // What the user typed; nothing for a field that holds what was loaded.
    using drafts_t = std::array<std::optional<Glib::ustring>, 3>;

    comment_fields_t();

    Gtk::Entry title;
    Gtk::TextView head;
    Gtk::TextView last;

    // Shows the texts in the fields that the user has not changed.
    void show(const comment_texts_t& texts);

    // The same with the comments of an album or book. When one of them can't be read it is named in the place of the
    // title, and there is nothing to edit: what nobody saw must not be replaced.
    void show_comments_of(const std::string& directory);

    // The same, but the directory's texts also replace what was typed, and no others stay.
    void fill_comments_of(const std::string& directory);

    // What could not be read and why, "" when nothing.
    [[nodiscard]] const Glib::ustring& unread() const { return unread_; }

    // Each text that is not empty replaces what its field holds.
    void fill(const comment_texts_t& texts);

    [[nodiscard]] comment_texts_t texts() const;

    // From now on what the fields hold counts as loaded.
    void accept();

    [[nodiscard]] drafts_t drafts() const;
    void restore(const drafts_t& drafts);

  private:
    [[nodiscard]] comment_texts_t load(const std::string& directory);
    [[nodiscard]] Glib::ustring typed(size_t field) const;
    void type(size_t field, const Glib::ustring& text);
    void load(size_t field, const std::string& text);

    std::array<kept_text_t, 3> loaded_;
    Glib::ustring unread_;
};

}  // namespace taloram
