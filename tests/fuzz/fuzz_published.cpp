#include "album/publish/page_links.h"
#include "album/publish/public_photo.h"
#include "tests/fuzz/fuzz_target.h"

namespace {

std::string bytes_of(const taloram::public_photo_t& photo) {
    std::string bytes;
    for (const std::string_view part : photo.parts()) {
        bytes += part;
    }
    return bytes;
}

}  // namespace

// As a photograph and as a page.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const fuzz::silence_t silence;
    taloram::public_photo_t photo;
    if (photo.read(fuzz::view_of(data, size))) {
        const std::string once = bytes_of(photo);
        constexpr size_t longest_exif = 0x10000;
        fuzz::require(once.size() <= size + longest_exif);
        fuzz::require(photo.read(fuzz::view_of(reinterpret_cast<const uint8_t*>(once.data()), once.size())));
    }
    for (const std::string& link : taloram::links_of_page({reinterpret_cast<const char*>(data), size})) {
        const auto target = taloram::resolve_link("html/page.html", link);
        fuzz::require(!target || (!target->starts_with('/') && target->size() <= link.size() + 5));
    }
    return 0;
}
