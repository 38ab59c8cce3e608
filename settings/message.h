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
    msg_not_opened = 47,    // followed by the path on a line of its own
    msg_no_viewer = 48,     // the viewer's script is missing
    msg_no_albums = 49,     // in place of an empty list
    msg_no_directory = 50,  // in place of the list when the album directory can't be read
    msg_progress_copy = 51,
    msg_progress_sizes = 52,
    msg_progress_pages = 53,
    msg_progress_zoom_pages = 54,
    msg_rotation = 55,        // a spinner's name
    msg_nothing_listed = 56,  // stands for a list that was not made yet
    msg_source_empty = 57,    // stands for the list of a directory without files
    msg_source_unreadable = 58,
    msg_album_empty = 59,
    msg_listing = 60,               // the bar of a list in the making
    msg_book_without_entries = 61,  // in the book editor
    msg_rename_refused = 62,
    msg_remove_failed = 63,
    msg_update_failed = 64,
    msg_previous = 65,
    msg_next = 66,
    msg_zoom_in = 67,
    msg_zoom_out = 68,
    msg_zoom_fit = 69,
    msg_zoom_full = 70,  // one pixel of the photograph on one of the screen
    msg_full_screen = 71,
    msg_photo_comment = 72,
    msg_turn_left = 73,
    msg_turn_right = 74,
    msg_all_photos = 75,       // back from the large picture
    msg_photo_not_shown = 76,  // stands for a picture that can't be decoded
    msg_no_photos = 77,
    msg_turn_failed = 78,
    msg_empty_book = 79,
    msg_stop_work = 80,       // asked when the progress window is closed
    msg_no_pictures = 81,     // in the viewer's window; what it shows can also be dropped there
    msg_not_a_photo = 82,     // a reason
    msg_photo_too_much = 83,  // a reason
    msg_reading_photo = 84,
    msg_slide_show = 85,  // in the title while it runs
    msg_no_room = 86,
    msg_album_unreadable = 87,
    // photographs' windows: 88 to 98
    msg_reserved_99 = 99,
    msg_names_an_album = 100,     // a new book's name
    msg_names_a_book = 101,       // a new album's name
    msg_outside_book = 102,       // followed by the book's directory
    msg_book_name_missing = 103,  // below msg_title_missing
    msg_complete_album = 104,
    msg_removes_photos = 105,  // below the question msg_remove
    msg_other_writer = 106,
    msg_text_unreadable = 107,  // followed by what was reported
    // books' windows: 108 to 118
    msg_reserved_119 = 119,
    msg_photo_damaged = 120,
    // the viewer: 121 to 124
    msg_reserved_125 = 125,
    msg_names_clash = 126,      // names, two a line, follow
    msg_wait_for_writer = 127,  // a question; the answer may be to stop waiting
    msg_room_missing = 128,     // an amount follows
    msg_reserved_end = 129,
};

[[nodiscard]] const char* getmsg(e_message_local_t id);

}  // namespace taloram
