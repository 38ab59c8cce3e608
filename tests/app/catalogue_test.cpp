#include <gtest/gtest.h>

#include "settings/message.h"
#include "talolib/message.h"

namespace {

TEST(Catalogues, HaveTheSameLinesAndATextForEveryRole) {
    for (const char* name : {"taloram.msg", "taloram.ja_JP.UTF-8.msg"}) {
        SCOPED_TRACE(name);
        std::vector<char> buffer;
        ASSERT_TRUE(talolib::load_message(buffer, (std::string(TALORAM_CATALOGUES "/") + name).c_str()));
        std::vector<const char*> table;
        talolib::make_message_table(table, buffer, talolib::count_lines(buffer));
        EXPECT_EQ(table.size(), taloram::msg_stop_work + 1U);
        for (size_t line = 0; line < table.size(); ++line) {
            EXPECT_NE(*table[line], '\0') << "line " << line;
        }
    }
}

}  // namespace
