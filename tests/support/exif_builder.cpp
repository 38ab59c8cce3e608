#include <algorithm>

#include "tests/support/photo_maker.h"

namespace test_support {
namespace {

uint32_t size32(const blob_t& bytes) {
    return static_cast<uint32_t>(bytes.size());
}

void append(blob_t& out, const blob_t& part) {
    out.insert(out.end(), part.begin(), part.end());
}

}  // namespace

blob_t exif_builder_t::packed(const std::vector<uint32_t>& values, unsigned width) const {
    blob_t out;
    for (const uint32_t value : values) {
        for (unsigned i = 0; i < width; ++i) {
            out.push_back(static_cast<unsigned char>(value >> 8 * (motorola_ ? width - 1 - i : i)));
        }
    }
    return out;
}

exif_builder_t& exif_builder_t::add(ifd_t ifd, uint16_t tag, uint16_t type, size_t count, const blob_t& value) {
    entries_[ifd].push_back({tag, type, static_cast<uint32_t>(count), value});
    return *this;
}

exif_builder_t& exif_builder_t::thumbnail(const blob_t& jpeg) {
    thumbnail_ = jpeg;
    return *this;
}

blob_t exif_builder_t::layout(std::vector<entry_t> entries, uint32_t start, uint32_t next) const {
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.tag < b.tag; });
    const auto behind_at = start + static_cast<uint32_t>(2 + 12 * entries.size() + 4);
    blob_t out = packed({static_cast<uint32_t>(entries.size())}, 2);
    blob_t behind;
    for (const entry_t& entry : entries) {
        append(out, packed({entry.tag, entry.type}, 2));
        append(out, packed({entry.count}, 4));
        if (entry.value.size() > 4) {
            append(out, packed({behind_at + size32(behind)}, 4));
            append(behind, entry.value);
            behind.resize(behind.size() + behind.size() % 2);  // TIFF wants values on even offsets
        } else {
            append(out, entry.value);
            out.resize(out.size() + 4 - entry.value.size());
        }
    }
    append(out, packed({next}, 4));
    append(out, behind);
    return out;
}

blob_t exif_builder_t::directory(ifd_t ifd, uint32_t base) const {
    return layout(entries_[ifd], base, 0);
}

blob_t exif_builder_t::tiff() const {
    uint32_t exif_at = 0;
    uint32_t ifd1_at = 0;
    uint32_t thumbnail_at = 0;
    blob_t out;
    // Laid out twice: the first round tells where the directories and the thumbnail come to lie.
    for (int round = 0; round < 2; ++round) {
        exif_builder_t all(*this);
        if (!entries_[exif].empty()) {
            all.longs(ifd0, 0x8769, {exif_at});
        }
        if (!thumbnail_.empty()) {
            all.longs(ifd1, 0x0201, {thumbnail_at}).longs(ifd1, 0x0202, {size32(thumbnail_)});
        }
        out.assign(2, motorola_ ? 'M' : 'I');
        append(out, packed({42}, 2));
        append(out, packed({8}, 4));
        append(out, layout(all.entries_[ifd0], 8, ifd1_at));
        exif_at = size32(out);
        if (!entries_[exif].empty()) {
            append(out, layout(entries_[exif], exif_at, 0));
            append(out, blob_t(4));  // some readers look for more behind the Exif IFD's values
        }
        if (!all.entries_[ifd1].empty()) {
            ifd1_at = size32(out);
            append(out, layout(all.entries_[ifd1], ifd1_at, 0));
            thumbnail_at = size32(out);
            append(out, thumbnail_);
        }
    }
    return out;
}

blob_t exif_builder_t::app1() const {
    blob_t out{'E', 'x', 'i', 'f', 0, 0};
    append(out, tiff());
    return out;
}

}  // namespace test_support
