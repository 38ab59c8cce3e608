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
    msg_book_without_entries = 60,  // in the book editor
    msg_rename_refused = 61,
    msg_remove_failed = 62,
    msg_update_failed = 63,
    msg_previous = 64,
    msg_next = 65,
    msg_zoom_in = 66,
    msg_zoom_out = 67,
    msg_zoom_fit = 68,
    msg_zoom_full = 69,  // one pixel of the photograph on one of the screen
    msg_full_screen = 70,
    msg_photo_comment = 71,
    msg_turn_left = 72,
    msg_turn_right = 73,
    msg_all_photos = 74,       // back from the large picture
    msg_photo_not_shown = 75,  // stands for a picture that can't be decoded
    msg_no_photos = 76,
    msg_turn_failed = 77,
    msg_empty_book = 78,
    msg_stop_work = 79,       // asked by the progress window
    msg_no_pictures = 80,     // in the viewer's window; what it shows can also be dropped there
    msg_not_a_photo = 81,     // a reason
    msg_photo_too_much = 82,  // a reason
    msg_reading_photo = 83,
    msg_slide_show = 84,  // in the title while it runs
    msg_no_room = 85,
    msg_album_unreadable = 86,
    msg_names_an_album = 87,     // a new book's name
    msg_names_a_book = 88,       // a new album's name
    msg_outside_book = 89,       // followed by the book's directory
    msg_book_name_missing = 90,  // below msg_title_missing
    msg_complete_album = 91,
    msg_removes_photos = 92,  // below the question msg_remove
    msg_other_writer = 93,
    msg_text_unreadable = 94,  // followed by what was reported
    msg_photo_damaged = 95,
    msg_names_clash = 96,   // names, two a line, follow
    msg_room_missing = 97,  // an amount follows
    msg_looks = 98,         // opens a list of them
    msg_look_bare = 99,
    msg_look_gallery = 100,
    msg_look_plain = 101,
    msg_verify_copies = 102,
    msg_leave_out = 103,       // files that fail, without a question
    msg_leave_out_this = 104,  // beside OK in the box of msg_album_failed
    msg_left_out = 105,        // a list follows
    msg_replaces_files = 106,  // a list follows
    msg_select_new = 107,      // files that the book does not have
    msg_is_held = 108,         // followed by an album's name
    msg_select_new_hint = 109,
    msg_book_not_searched = 110,
    msg_searching_book = 111,

    msg_progress_verify = 112,  // captions of the progress window, as those from msg_progress_copy on
    msg_pause = 113,
    msg_continue = 114,
    msg_stop = 115,
    msg_photo_count = 116,  // %1 photographs are done of %2
    msg_photo_pace = 117,   // the same, %3 in a second, and %4 such as "8 s" left
    msg_file_count = 118,   // as msg_photo_count
    msg_file_pace = 119,    // as msg_photo_pace
    msg_paused = 120,
    msg_stopping = 121,

    msg_check_originals = 122,
    msg_as_imported = 123,   // a number follows
    msg_sums_written = 124,  // a time follows
    msg_flaws_found = 125,   // files follow, each with one of the next four
    msg_flaw_changed = 126,
    msg_flaw_missing = 127,
    msg_flaw_unlisted = 128,
    msg_flaw_unreadable = 129,  // a reason follows
    msg_no_sums = 130,
    msg_check_stopped = 131,  // a number follows
    msg_move_to_trash = 132,
    msg_no_trash = 133,  // a reason follows
    msg_guide = 134,
    msg_source_now = 135,  // a directory follows

};

[[nodiscard]] const char* getmsg(e_message_local_t id);

}  // namespace taloram
