#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "libutils/bytes/alloc_mmap_unix.h"

namespace libutils {

// A vector whose elements lie in a block that copies share. The counts are plain integers: a block and all its
// owners belong to one thread at a time. Element access is unchecked. Failures are reported by result only.
template <typename T, typename A>
class refvector2 {
    static_assert(std::is_trivially_copyable_v<T>, "elements are copied as bytes");

  public:
    refvector2() = default;
    refvector2(const refvector2& other) : block_(other.block_) { retain(); }
    refvector2(refvector2&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    refvector2& operator=(const refvector2& other) {
        refvector2 copy(other);
        std::swap(block_, copy.block_);
        return *this;
    }
    refvector2& operator=(refvector2&& other) noexcept {
        refvector2 moved(std::move(other));
        std::swap(block_, moved.block_);
        return *this;
    }

    [[nodiscard]] virtual bool empty() const { return buffer_size() == 0; }
    [[nodiscard]] virtual size_t size() const { return buffer_size(); }
    [[nodiscard]] virtual T* begin() { return buffer_begin(); }
    [[nodiscard]] virtual T* end() { return buffer_begin() + buffer_size(); }
    [[nodiscard]] virtual const T* begin() const { return buffer_begin(); }
    [[nodiscard]] virtual const T* end() const { return buffer_begin() + buffer_size(); }
    [[nodiscard]] virtual T& operator[](size_t i) { return buffer_begin()[i]; }
    [[nodiscard]] virtual const T& operator[](size_t i) const { return buffer_begin()[i]; }
    [[nodiscard]] virtual T* operator->() { return buffer_begin(); }
    [[nodiscard]] virtual const T* operator->() const { return buffer_begin(); }

    // Makes a new block of `size` elements from `path` (0: the whole file). With `keep`, the start of the block held
    // before is copied over the start of the new one, which needs a writable allocation; without, the held block
    // is released first.
    [[nodiscard]] virtual bool load(size_t size, const char* path, e_prot_t prot, unsigned long long offset, bool keep,
                                    android_app* app) {
        if (!keep) {
            deallocate();
        }
        block_t* loaded = make_block(size, path, prot, offset, app);
        if (loaded == nullptr) {
            return false;
        }
        if (block_ != nullptr) {
            if (prot == PROT_READ_WRITE || path == nullptr) {
                copy_elements(loaded->data, block_->data, std::min(loaded->size, block_->size));
            }
            deallocate();
        }
        block_ = loaded;
        return true;
    }

    // Resizes the held buffer, for all its owners, with the contents kept as far as they fit; without one, allocates
    // an anonymous writable buffer. True when a buffer of `size` elements is held afterwards.
    [[nodiscard]] virtual bool resize(size_t size, unsigned long long offset = 0) {
        if (block_ == nullptr) {
            return allocate(size, nullptr, PROT_READ_WRITE, offset);
        }
        if (size > max_elements) {
            return false;
        }
        void* data = block_->allocator.reallocate(block_->data, size * sizeof(T), offset);
        if (data == nullptr) {
            return false;
        }
        block_->data = static_cast<T*>(data);
        block_->size = size;
        return true;
    }

    virtual void clear() { deallocate(); }

    virtual ~refvector2() { deallocate(); }

    // Releases the held block and makes a new one of `size` elements through the allocator.
    [[nodiscard]] bool allocate(size_t size, const char* path, e_prot_t prot, unsigned long long offset) {
        deallocate();
        block_ = make_block(size, path, prot, offset, nullptr);
        return block_ != nullptr;
    }

    [[nodiscard]] bool is_allocated() const { return block_ != nullptr; }
    // True when nobody else sees the buffer, so that growing it in place can't be told from copying it.
    [[nodiscard]] bool owns_alone() const { return block_->count == 1 && block_->allocator.is_private(); }

    // False when a mapped file could not be read to its end any more; what is missing reads as 0. To be asked once
    // the bytes were used.
    [[nodiscard]] bool is_intact() const { return block_ == nullptr || block_->allocator.is_intact(block_->data); }

  protected:
    [[nodiscard]] T* buffer_begin() const { return block_ == nullptr ? nullptr : block_->data; }
    [[nodiscard]] size_t buffer_size() const { return block_ == nullptr ? 0 : block_->size; }

    static void copy_elements(T* to, const T* from, size_t count) {
        if (count != 0) {
            std::memcpy(to, from, count * sizeof(T));
        }
    }

    void deallocate() {
        if (block_ != nullptr && --block_->count == 0) {
            block_->allocator.deallocate(block_->data);
            delete block_;
        }
        block_ = nullptr;
    }

  private:
    struct block_t {
        uint64_t count = 1;  // vectors that point here
        uint64_t size = 0;   // elements
        A allocator;
        T* data = nullptr;
    };

    static constexpr size_t max_elements = std::numeric_limits<size_t>::max() / sizeof(T);

    static block_t* make_block(size_t size, const char* path, e_prot_t prot, unsigned long long offset,
                               android_app* app) {
        if (size > max_elements) {
            return nullptr;
        }
        auto* block = new (std::nothrow) block_t;
        if (block == nullptr) {
            return nullptr;
        }
        size_t bytes = size * sizeof(T);
        block->data = static_cast<T*>(block->allocator.allocate(bytes, path, prot, offset, app));
        if (block->data == nullptr) {
            delete block;
            return nullptr;
        }
        block->size = bytes / sizeof(T);
        return block;
    }

    void retain() {
        if (block_ != nullptr) {
            ++block_->count;
        }
    }

    block_t* block_ = nullptr;
};

}  // namespace libutils
