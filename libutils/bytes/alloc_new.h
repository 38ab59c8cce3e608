#pragma once

#include <cstddef>

#include "libutils/bytes/alloc_mmap_unix.h"

namespace libutils {

// Allocator record of a buffer on the heap.
class alloc_new {
  public:
    // `size` bytes, with a path filled from the start of that file as far as it reaches; `size` 0 with a path means
    // the file's size. Null when that size can't be read or memory is short; a file that can't be opened leaves
    // the bytes as allocated.
    [[nodiscard]] void* allocate(size_t& size, const char* path, e_prot_t prot, unsigned long long offset,
                                 android_app* app);

    // A new buffer with the contents kept as far as they fit; null on failure, `old` is then still valid.
    [[nodiscard]] void* reallocate(void* old, size_t size, unsigned long long offset);

    void deallocate(void* data);

    [[nodiscard]] bool is_intact(const void* /*data*/) const { return true; }
    [[nodiscard]] bool is_private() const { return true; }

  private:
    size_t length_ = 0;  // bytes
};

}  // namespace libutils
