#pragma once

#include <utility>

#include "libutils/bytes/alloc_new.h"
#include "libutils/bytes/refvector2.h"

namespace libutils {

// A shared vector in one heap block: a header (reference count, element count, allocator record) and the elements
// after it. Assignment and copies share the block. The counts are plain integers.
template <typename T, typename A>
class refvector {
    static_assert(std::is_trivially_copyable_v<T>, "elements are copied as bytes");

  public:
    refvector() = default;
    refvector(const refvector& other) : header_(other.header_) { retain(); }

    [[nodiscard]] virtual bool empty() const { return size() == 0; }
    [[nodiscard]] virtual size_t size() const { return header_ == nullptr ? 0 : header_->size; }
    [[nodiscard]] virtual T* begin() { return elements(); }
    [[nodiscard]] virtual T* end() { return elements() + size(); }
    [[nodiscard]] virtual const T* begin() const { return elements(); }
    [[nodiscard]] virtual const T* end() const { return elements() + size(); }
    [[nodiscard]] virtual T& operator[](size_t i) { return elements()[i]; }
    [[nodiscard]] virtual const T& operator[](size_t i) const { return elements()[i]; }
    [[nodiscard]] virtual T* operator->() { return elements(); }
    [[nodiscard]] virtual const T* operator->() const { return elements(); }

    virtual refvector& operator=(const refvector& other) {
        refvector copy(other);
        std::swap(header_, copy.header_);
        return *this;
    }

    // A block of `size` elements of this vector's own, the contents kept as far as they fit; new elements are as
    // allocated. False, and unchanged, when memory is short.
    [[nodiscard]] virtual bool resize(size_t size) {
        if (size > (std::numeric_limits<size_t>::max() - sizeof(header_t)) / sizeof(T)) {
            return false;
        }
        A allocator;
        size_t bytes = sizeof(header_t) + size * sizeof(T);
        void* block = allocator.allocate(bytes, nullptr, PROT_READ_WRITE, 0, nullptr);
        if (block == nullptr) {
            return false;
        }
        refvector own;
        own.header_ = new (block) header_t{1, size, allocator};
        if (const size_t kept = std::min(size, this->size()); kept != 0) {
            std::memcpy(own.elements(), elements(), kept * sizeof(T));
        }
        std::swap(header_, own.header_);
        return true;
    }

    virtual void clear() { release(); }

    virtual ~refvector() { release(); }

  private:
    struct header_t {
        uint64_t count;  // vectors that point here
        uint64_t size;   // elements
        A allocator;     // of the whole block, this header included
    };
    static_assert(alignof(T) <= alignof(header_t), "elements follow the header directly");

    [[nodiscard]] T* elements() const { return header_ == nullptr ? nullptr : reinterpret_cast<T*>(header_ + 1); }

    void retain() {
        if (header_ != nullptr) {
            ++header_->count;
        }
    }

    void release() {
        if (header_ != nullptr && --header_->count == 0) {
            A allocator = header_->allocator;
            allocator.deallocate(header_);
        }
        header_ = nullptr;
    }

    header_t* header_ = nullptr;
};

}  // namespace libutils
