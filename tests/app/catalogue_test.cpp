#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "messages/message.h"
#include "talolib/message.h"

namespace taloram {

// Texts that tell the user to press a button, and that button.
constexpr e_message_local_t quotes[][2] = {
    {msg_no_albums, msg_edit},      {msg_no_directory, msg_options},     {msg_nothing_listed, msg_update},
    {msg_source_empty, msg_update}, {msg_source_unreadable, msg_update}, {msg_book_without_entries, msg_new_album},
    {msg_stop_work, msg_rebuild}};

TEST(Catalogues, HaveTheSameLinesAndATextForEveryRole) {
    for (const auto& file : std::filesystem::directory_iterator(TALORAM_CATALOGUES)) {
        if (file.path().extension() != ".msg") {
            continue;
        }
        SCOPED_TRACE(file.path());
        std::vector<char> buffer;
        ASSERT_TRUE(talolib::load_message(buffer, file.path().c_str()));
        std::vector<const char*> table;
        talolib::make_message_table(table, buffer, talolib::count_lines(buffer));
        ASSERT_EQ(table.size(), msg_source_now + 1U);
        for (size_t line = 0; line < table.size(); ++line) {
            EXPECT_NE(*table[line], '\0') << "line " << line;
        }
        // The one for any locale, also for such as have no other characters.
        if (file.path().filename() == "taloram.msg") {
            EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](signed char c) { return c >= 0; }));
        }
        for (const auto& [text, button] : quotes) {
            EXPECT_NE(std::string(table[text]).find(table[button]), std::string::npos) << table[text];
        }
    }
}

}  // namespace taloram
