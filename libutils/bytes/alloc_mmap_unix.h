#pragma once

#include <cstddef>
#include <cstdint>

struct android_app;  // opaque platform context, always null here

namespace libutils {

// Protection of an allocation; any other value makes the allocation fail.
enum e_prot_t : int { PROT_READ_ONLY = 0, PROT_READ_WRITE = 1 };

// Allocator record of one shared buffer whose bytes lie in a memory mapping: of a file, or anonymous.
//
// An allocation of no bytes (an empty file) succeeds with an address that must not be read. The file of a mapping
// stays open, so that is_intact() can ask for its size. Nothing here writes a message.
class alloc_mmap_unix {
  public:
    // Maps memory and returns its address, null on failure.
    //
    // With a path: `size` bytes of the regular file from `offset` (a multiple of the page size), shared; `size` 0
    // means the rest of the file and is set to it. Fails when the file can't be opened, is no regular file or
    // ends before offset + size. Without a path: `size` anonymous, private, writable bytes.
    [[nodiscard]] void* allocate(size_t& size, const char* path, e_prot_t prot, unsigned long long offset,
                                 android_app* app);

    // Moves `old` to a mapping of `size` bytes with the contents kept as far as they fit; null on failure, `old` is
    // then still valid. A file mapping that grows becomes a private copy, since no byte past a file's end can be
    // touched.
    [[nodiscard]] void* reallocate(void* old, size_t size, unsigned long long offset);

    void deallocate(void* data);

    // False when a part of the file could not be read any more, because it became shorter or its medium is gone or
    // broken: the bytes from there on are zeros.
    [[nodiscard]] bool is_intact(const void* data) const;

    // True when only this process sees the bytes and may write them.
    [[nodiscard]] bool is_private() const { return kind_ == kind_private; }

  private:
    [[nodiscard]] void* map_file(size_t& size, const char* path, unsigned long long offset);

    static const int32_t kind_private;

    int32_t file_descriptor_ = -1;
    uint64_t length_ = 0;  // bytes
    int32_t open_mode_ = 0;
    int32_t protection_ = 0;
    int32_t kind_ = 0;
};

}  // namespace libutils
