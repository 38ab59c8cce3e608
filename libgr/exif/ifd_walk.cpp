#include "libgr/exif/ifd_walk.h"

#include <optional>

#include "libutils/diagnostics.h"

namespace libgr {

namespace {

constexpr uint64_t after_exif_entry = 4;
constexpr uint64_t max_overlap = 4;  // values in all, in lengths of the data; without overlaps it is below 1

class ifd_walker_t {
  public:
    explicit ifd_walker_t(const ifd_source_t& source)
        : source_(source),
          ifd_(source.ifd, source.order),
          data_(source.data, source.order),
          budget_(max_overlap * source.data.size()) {}

    bool walk(const std::function<void(const ifd_entry_t&)>& visit) {
        const uint64_t count = ifd_.u16(0).value_or(0);
        if (!holds_directory(count)) {
            return false;
        }
        for (uint64_t i = 0; i < count; ++i) {
            const uint64_t at = ifd_count_size + i * ifd_entry_size;
            if (!holds_entry(at)) {
                break;
            }
            if (const auto entry = read_entry(at)) {
                visit(*entry);
            }
        }
        return true;
    }

  private:
    [[nodiscard]] bool holds_directory(uint64_t count) const {
        const uint64_t size = ifd_count_size + count * ifd_entry_size;
        if (source_.kind != ifd_source_t::maker_note || ifd_.holds(0, size)) {
            return true;
        }
        libutils::report(source_.name, count, ": size ", size, " over than ifd.size(", ifd_.size());
        return false;
    }

    [[nodiscard]] bool holds_entry(uint64_t at) const {
        if (source_.kind == ifd_source_t::exif) {
            const uint64_t needed = at + ifd_entry_size + after_exif_entry;
            if (!ifd_.holds(0, needed)) {
                libutils::report("too few ifd area", needed, " > ", ifd_.size());
                return false;
            }
        } else if (!ifd_.holds(at, ifd_entry_size)) {
            libutils::report("value over, offset: ", at, " ifd size: ", ifd_.size());
            return false;
        }
        return true;
    }

    // The entry at `at`, which lies inside; nothing when its value can't be had.
    [[nodiscard]] std::optional<ifd_entry_t> read_entry(uint64_t at) {
        ifd_entry_t entry;
        entry.tag = *ifd_.u16(at);
        entry.type = *ifd_.u16(at + 2);
        entry.offset = *ifd_.u32(at + 8);
        if (entry.type >= exiftypesize.size()) {
            return std::nullopt;
        }
        const uint64_t size = uint64_t{*ifd_.u32(at + 4)} * exiftypesize[entry.type];
        entry.inlined = size <= ifd_inline_size;
        if (entry.inlined) {
            entry.value = source_.ifd.subview(at + 8, size);
            return entry;
        }
        const uint64_t kept = data_.bytes(entry.offset, size).size();
        if (!holds_value(entry.offset, size) || kept > budget_) {
            report_value(entry, size);
            return std::nullopt;
        }
        budget_ -= kept;
        entry.value = source_.data.subview(entry.offset, size);
        return entry;
    }

    [[nodiscard]] bool holds_value(uint64_t offset, uint64_t size) const {
        return data_.holds(offset, source_.kind == ifd_source_t::main ? 1 : size);
    }

    void report_value(const ifd_entry_t& entry, uint64_t size) const {
        switch (source_.kind) {
            case ifd_source_t::main:
                libutils::report("value over, offset ", entry.offset, " tiff size: ", data_.size());
                break;
            case ifd_source_t::exif:
                libutils::report("offset+size over: ", entry.offset, ", ", size, ", tiff size: ", data_.size());
                break;
            case ifd_source_t::maker_note:
                libutils::report(source_.name, "[", entry.tag, "]: ", entry.offset, ", ", size,
                                 ": app1 size: ", data_.size(), " over.");
                break;
        }
    }

    const ifd_source_t& source_;
    libutils::byte_reader ifd_;
    libutils::byte_reader data_;
    uint64_t budget_;  // bytes of values that may still be handed out
};

}  // namespace

bool walk_ifd(const ifd_source_t& source, const std::function<void(const ifd_entry_t&)>& visit) {
    return ifd_walker_t(source).walk(visit);
}

}  // namespace libgr
