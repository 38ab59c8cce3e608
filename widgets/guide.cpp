#include "widgets/guide.h"

#include <filesystem>
#include <system_error>

#include "widgets/browser.h"

namespace taloram {

std::string g_guide;

// Its pictures lie beside the page itself, not beside a link to it.
void open_guide(Gtk::Window& parent) {
    std::error_code missing;
    const std::filesystem::path page = std::filesystem::canonical(g_guide, missing);
    if (missing) {
        open_with_desktop(parent, g_guide);
    } else {
        open_in_browser(parent, page.string());
    }
}

}  // namespace taloram
