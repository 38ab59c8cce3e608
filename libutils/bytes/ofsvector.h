#pragma once

#include "libutils/bytes/refvector2.h"

namespace libutils {

// A view on a shared buffer: parsers share a file's buffer and set offset and limit to the part they read. A view that
// starts past the end of its buffer has size 0.
template <typename T, typename A>
class ofsvector : public refvector2<T, A> {
    using base = refvector2<T, A>;

  public:
    static constexpr uint64_t no_limit = ~uint64_t{0};

    uint64_t offset = 0;        // elements from the start of the buffer
    uint64_t limit = no_limit;  // largest length of the view in elements

    [[nodiscard]] bool empty() const override { return size() == 0; }
    [[nodiscard]] size_t size() const override { return std::min<uint64_t>(base::buffer_size() - start(), limit); }
    [[nodiscard]] T* begin() override { return view_begin(); }
    [[nodiscard]] T* end() override { return view_begin() + size(); }
    [[nodiscard]] const T* begin() const override { return view_begin(); }
    [[nodiscard]] const T* end() const override { return view_begin() + size(); }
    [[nodiscard]] T& operator[](size_t i) override { return view_begin()[i]; }
    [[nodiscard]] const T& operator[](size_t i) const override { return view_begin()[i]; }
    [[nodiscard]] T* operator->() override { return view_begin(); }
    [[nodiscard]] const T* operator->() const override { return view_begin(); }

    [[nodiscard]] bool load(size_t size, const char* path, e_prot_t prot, unsigned long long file_offset, bool keep,
                            android_app* app) override {
        const bool loaded = base::load(size, path, prot, file_offset, keep, app);
        if (loaded || !keep) {
            reset_view();
        }
        return loaded;
    }

    // Turns the view into a buffer of its own with `size` elements, the view's contents kept as far as they fit; other
    // vectors that share the old buffer keep it. False, and unchanged, when memory is short.
    [[nodiscard]] bool resize(size_t size, unsigned long long file_offset = 0) override {
        if (!base::is_allocated() || (offset == 0 && limit == no_limit && base::owns_alone())) {
            return base::resize(size, file_offset);
        }
        ofsvector own;
        if (!own.allocate(size, nullptr, PROT_READ_WRITE, 0)) {
            return false;
        }
        base::copy_elements(own.begin(), view_begin(), std::min(size, this->size()));
        *this = own;
        return true;
    }

    void clear() override {
        base::clear();
        reset_view();
    }

    // Another view of the same buffer: `count` elements from element `first` of this view, both cut to this view.
    [[nodiscard]] ofsvector subview(uint64_t first, uint64_t count = no_limit) const {
        ofsvector part(*this);
        const uint64_t begin = std::min<uint64_t>(first, size());
        part.offset = start() + begin;
        part.limit = std::min<uint64_t>(count, size() - begin);
        return part;
    }

  private:
    [[nodiscard]] uint64_t start() const { return std::min<uint64_t>(offset, base::buffer_size()); }
    [[nodiscard]] T* view_begin() const { return base::is_allocated() ? base::buffer_begin() + start() : nullptr; }
    void reset_view() {
        offset = 0;
        limit = no_limit;
    }
};

// What every buffer of the JPEG and EXIF library is.
using bytes_t = ofsvector<unsigned char, alloc_mmap_unix>;

}  // namespace libutils
