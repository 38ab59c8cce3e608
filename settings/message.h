#pragma once

#include "talolib/message.h"

namespace taloram {

// Lines of the program's catalogue, data/taloram.msg.
enum e_message_local_t : talolib::e_message_t {
    msg_program = 0,          // first half of the main window's title
    msg_program_purpose = 1,  // second half
    msg_open_book = 2,
    msg_new_book = 3,
    msg_new_album = 4,
    msg_browser = 6,
    msg_options = 7,
    msg_edit = 8,  // also the title of the book editor
    msg_move = 9,
    msg_delete = 10,
    msg_close = 11,
    msg_book_name = 12,
    msg_source_directory = 13,
    msg_album_directory = 14,
    msg_photographs = 15,  // caption of the grid
    msg_invert = 16,
    msg_update = 17,
    msg_browse = 18,  // opens a folder chooser
    msg_from = 19,
    msg_to = 20,
    msg_title = 21,        // also the book page's title column
    msg_text_column = 22,  // the book page's column of first text lines
    msg_head_comment = 23,
    msg_last_comment = 24,
    msg_message_box = 25,  // title of every message box
    msg_title_missing = 26,
    msg_source_missing = 27,
    msg_album_missing = 28,
    msg_album_failed = 29,
    msg_comments_failed = 30,
    msg_shrink_size = 31,
    msg_quality = 32,
    msg_items_per_row = 33,
    msg_html_header = 34,
    msg_html_address = 35,
    msg_metering_average = 36,  // centre-weighted average
    msg_metering_spot = 37,
    msg_list = 38,  // the book page's list link, and the open button of an album
    msg_directory_column = 39,
    msg_nothing_selected = 40,
    msg_album_exists = 41,
    msg_viewer = 42,
    msg_remove = 44,  // also the question that it asks
    msg_rebuild = 45,
    msg_count_column = 46,
};

[[nodiscard]] const char* getmsg(e_message_local_t id);

}  // namespace taloram
