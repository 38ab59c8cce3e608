#include "tools/card_command.h"

#include <iostream>

#include "album/album_layout.h"
#include "libutils/files/path.h"
#include "libutils/text/text.h"
#include "tools/check_arguments.h"
#include "tools/start_up.h"
#include "tools/wrong_use.h"

namespace talomake {

using namespace taloram;
using libutils::printable;

namespace {

bool check_apart(const std::string& a, const std::string& b) {
    return !is_entangled(a, b) || wrong_use(a, ", ", b, ": one lies in the other.");
}

bool check_album_name(const std::string& name, const std::string& book) {
    if (!is_plain_name(name) || name.front() == '.') {
        return wrong_use("--album: \"", name, "\" is not the name of an album.");
    }
    const std::string path = entry_path(book, name);
    if (is_exist(path) && !libutils::is_directory(path)) {
        return wrong_use(path, ": not a directory.");
    }
    return !is_book(path) || wrong_use(path, ": a book, not an album.");
}

bool check_card(const card_command_t& command, card_order_t& order) {
    std::vector<std::string> books;
    if (!check_directories(command.cards, order.cards) || !check_books({command.book}, books)) {
        return false;
    }
    order.book = books.front();
    order.album = command.album;
    order.only_check = command.check;
    for (size_t i = 0; i < order.cards.size(); ++i) {
        if (!check_apart(order.cards[i], order.book)) {
            return false;
        }
        for (size_t other = 0; other < i; ++other) {
            if (!check_apart(order.cards[other], order.cards[i])) {
                return false;
            }
        }
    }
    return !order.album || check_album_name(*order.album, order.book);
}

void list_places(const card_result_t& result) {
    for (const card_entry_t& entry : result.files) {
        std::cout << printable(entry.file.path()) << '\t' << printable(entry.place) << '\n';
    }
}

struct kind_t {
    passed_over_t why;
    const char* text;
    bool is_named;  // one by one
};

constexpr kind_t kinds[] = {
    {passed_over_t::hidden, "hidden", false},
    {passed_over_t::empty, "empty", true},
    {passed_over_t::link, "links or devices", true},
    {passed_over_t::catalogue, "catalogues of the camera", true},
};

void tell_passed_over(const card_result_t& result) {
    for (const auto& [why, text, is_named] : kinds) {
        size_t count = 0;
        std::string names;
        for (const passed_over_file_t& file : result.passed_over) {
            if (file.why == why) {
                names += (count++ == 0 ? ": " : ", ") + printable(file.path);
            }
        }
        if (count > 0) {
            std::cout << libutils::join_text("Passed over, ", text, ": ", count) << (is_named ? names : "") << '\n';
        }
    }
    for (const std::string& path : result.beside) {
        std::cout << "Not looked at, because it is not in DCIM: " << printable(path) << '\n';
    }
}

void tell_missing(const card_result_t& result) {
    for (const std::string& card : result.empty_cards) {
        libutils::report(printable(card), ": no file was found there.");
    }
    for (const card_entry_t& entry : result.files) {
        if (entry.fate == card_fate_t::missing) {
            libutils::report(printable(entry.file.path()), ": not in the book: ", printable(entry.reason));
        }
    }
}

void summarise(const card_result_t& result) {
    const size_t missing = result.count(card_fate_t::missing);
    tell_passed_over(result);
    std::cout << libutils::join_text(
        "Files of the card: ", result.files.size(), "; in the book before: ", result.count(card_fate_t::held),
        "; imported: ", result.count(card_fate_t::imported),
        "; equal to one of these: ", result.count(card_fate_t::equal), "; not in the book: ", missing, "\n");
    std::cout.flush();
    tell_missing(result);
    if (!result.is_proven()) {
        libutils::report("talomake: ", missing, " of ", result.files.size(), " files are not in the book",
                         result.has_failed || result.files.empty() ? ", and not all could be looked at or done." : ".",
                         " Keep the card.");
    } else if (result.beside.empty()) {
        std::cout << "Every file of the card is in the book: it may be cleared.\n";
    } else {
        std::cout << "Every file of the card's DCIM is in the book: DCIM may be cleared.\n";
    }
}

}  // namespace

int run_card(const char* program, const card_command_t& command) {
    card_order_t order;
    if (!check_card(command, order)) {
        return programs::status_wrong_use;
    }
    start_up(program, command.run);
    card_result_t result;
    {
        shown_progress_t progress(command.run.progress);
        result = import_cards(order, progress.signals);
    }
    for (const std::string& album : result.albums) {
        std::cout << album << "/index.html\n";
    }
    if (command.list) {
        list_places(result);
    }
    summarise(result);
    return result.is_proven() ? programs::status_done : programs::status_failed;
}

}  // namespace talomake
