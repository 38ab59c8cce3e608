#include <string>

#include "album/texts/comment_store.h"
#include "settings/settings.h"
#include "settings/settings_file.h"

// Saves an album's texts, a photograph's comment and the settings, as the windows do:
//
//   save_words <album> <photograph> <text>
int main(int argc, char** argv) {
    if (argc != 4) {
        return 2;
    }
    const std::string album = argv[1];
    const std::string text = argv[3];
    taloram::g_global.from = taloram::g_global.album = album;
    taloram::g_global.html_header = text;
    taloram::saveini("", "taloram");
    const bool saved = taloram::savecommenttxt(album, text, text + "\n", text + "\n") &&
                       taloram::savephotocomment(text + "\n", album, argv[2]);
    return saved ? 0 : 1;
}
