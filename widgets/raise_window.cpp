#include "widgets/raise_window.h"

#include <cstdlib>

#include "libutils/text/text.h"

namespace taloram {

const char* const ostype = std::getenv("OSTYPE");

void raise_window(Gtk::Window& window) {
    if (ostype != nullptr && !libutils::begins_with_nocase(ostype, "Win")) {
        window.iconify();
    }
    window.present();
}

}  // namespace taloram
