#include "album/publish/text_warnings.h"

#include <optional>
#include <sstream>
#include <vector>

#include "album/album_layout.h"
#include "album/pages/active_markup.h"
#include "album/pages/page_frame.h"
#include "album/texts/comment_store.h"
#include "shooting_data/exif_summary.h"

namespace taloram {

void warn_of_texts(const std::string& directory, bool is_album) {
    page_texts_t texts;
    if (const unread_text_t unread = load_page_texts(texts, directory)) {
        report_unread(unread);
    }
    std::vector<std::string> photos;
    // What can't be listed has no texts; its pages are what they are.
    if (!is_album || list_photos(photos, directory)) {
        return;
    }
    for (const std::string& photo : photos) {
        std::optional<std::string> comment;
        if (const unread_text_t unread = load_photo_comment(comment, directory, photo)) {
            report_unread(unread);
        }
        warn_of_active_markup(text_path(directory, photo), comment.value_or(""));
        std::ostringstream summary;
        const std::string original = original_path(directory, photo);
        if (is_exist(original) && write_summary(summary, original, true)) {
            warn_of_active_markup(original, summary.view());
        }
    }
}

}  // namespace taloram
