#include "toolkit/text_encoding.h"

#include <glib.h>
#include <gtkmm/stock.h>
#include <gtkmm/stockitem.h>

#include <memory>

#include "libutils/text/text.h"

namespace taloram {

namespace {

using glib_text_t = std::unique_ptr<char, decltype(&g_free)>;

constexpr const char* replacement = "\xEF\xBF\xBD";  // U+FFFD

bool is_utf8_locale() {
    return g_get_charset(nullptr) != FALSE;
}

std::string valid_utf8(const std::string& text) {
    const glib_text_t valid(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
    return valid.get();
}

std::string character_to_utf8(const std::string& character) {
    gsize size = 0;
    const glib_text_t converted(
        g_locale_to_utf8(character.data(), static_cast<gssize>(character.size()), nullptr, &size, nullptr), &g_free);
    return converted == nullptr || character.front() == '\0' ? replacement : std::string(converted.get(), size);
}

bool take_letter(std::string& taken, char letter) {
    const auto lower = static_cast<char>(g_ascii_tolower(letter));
    if (taken.find(lower) != std::string::npos) {
        return false;
    }
    taken += lower;
    return true;
}

// A label's text in which nothing is a mnemonic.
std::string without_mnemonic(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        escaped.append(c == '_' ? 2 : 1, c);
    }
    return escaped;
}

}  // namespace

Glib::ustring to_toolkit(const std::string& text) {
    if (is_utf8_locale()) {
        return valid_utf8(text);
    }
    std::string converted;
    libutils::for_each_character(
        text, [&](size_t offset, size_t length) { converted += character_to_utf8(text.substr(offset, length)); });
    return converted;
}

std::string from_toolkit(const Glib::ustring& text) {
    const std::string utf8 = valid_utf8(text.raw());
    const char* charset = nullptr;
    if (g_get_charset(&charset) != FALSE) {
        return utf8;
    }
    gsize size = 0;
    const glib_text_t converted(g_convert_with_fallback(utf8.data(), static_cast<gssize>(utf8.size()), charset, "UTF-8",
                                                        "?", nullptr, &size, nullptr),
                                &g_free);
    return converted == nullptr ? "" : std::string(converted.get(), size);
}

Glib::ustring message_text(e_message_local_t id) {
    return to_toolkit(getmsg(id));
}

Glib::ustring mnemonic_text(e_message_local_t id, std::string& taken) {
    const std::string text = message_text(id).raw();
    for (size_t i = 0; i < text.size(); ++i) {
        if (g_ascii_isalpha(text[i]) && take_letter(taken, text[i])) {
            return without_mnemonic(text.substr(0, i)) + "_" + without_mnemonic(text.substr(i));
        }
    }
    // Texts without Latin letters carry theirs in brackets, as is customary.
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        if (take_letter(taken, letter)) {
            return without_mnemonic(text) + "(_" + letter + ")";
        }
    }
    return without_mnemonic(text);
}

std::string stock_letters(std::initializer_list<Gtk::StockID> buttons) {
    std::string letters;
    for (const Gtk::StockID& button : buttons) {
        Gtk::StockItem item;
        if (!Gtk::Stock::lookup(button, item)) {
            continue;
        }
        const std::string label = item.get_label().raw();
        if (const size_t line = label.find('_'); line < label.size() - 1) {
            letters += static_cast<char>(g_ascii_tolower(label[line + 1]));
        }
    }
    return letters;
}

}  // namespace taloram
