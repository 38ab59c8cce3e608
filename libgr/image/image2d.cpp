#include "libgr/image/image2d.h"

namespace libgr {

void palette_t::clear() {
    for (auto& channel : channels) {
        channel.clear();
    }
}

bool image2d_t::allocate() {
    // Both factors stay far below 64 bits, their product need not.
    uint64_t bytes = 0;
    if (__builtin_mul_overflow(rowsize(), uint64_t{window.top} + window.height, &bytes)) {
        return false;
    }
    return resize(bytes);
}

void image2d_t::clear() {
    ofsvector::clear();
    palette.clear();
    window.width = 0;
    window.height = 0;
}

uint64_t image2d_t::rowsize() const {
    const uint64_t bytes = (uint64_t{desc.getPixelBits()} * rowlength() + 7) / 8;
    const uint64_t alignment = store == nullptr || store->alignment == 0 ? 4 : store->alignment;
    return (bytes + alignment - 1) / alignment * alignment;
}

uint64_t image2d_t::rowbyte() const {
    return uint64_t{desc.getPixelBits()} * window.width / 8;
}

uint32_t image2d_t::rowlength() const {
    return window.rowlength == 0 ? window.width : window.rowlength;
}

unsigned char* image2d_t::pixel(uint32_t x, uint32_t y) {
    return begin() + rowsize() * (uint64_t{window.top} + y) +
           uint64_t{desc.getPixelBits()} * (uint64_t{window.left} + x) / 8;
}

const unsigned char* image2d_t::pixel(uint32_t x, uint32_t y) const {
    return const_cast<image2d_t*>(this)->pixel(x, y);
}

bool image2d_t::holds_window() const {
    uint64_t bytes = 0;
    return uint64_t{window.left} + window.width <= rowlength() &&
           !__builtin_mul_overflow(rowsize(), uint64_t{window.top} + window.height, &bytes) && bytes <= size();
}

}  // namespace libgr
