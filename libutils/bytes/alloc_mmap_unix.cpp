#include "libutils/bytes/alloc_mmap_unix.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "libutils/bytes/mapped_files.h"

namespace libutils {

namespace {

// What a buffer of no bytes points at: mmap(2) refuses a length of 0.
unsigned char no_bytes;

void* or_null(void* mapped) {
    return mapped == MAP_FAILED ? nullptr : mapped;
}

// Takes the descriptor over when it succeeds.
void* map_watched(size_t size, int protection, int kind, int file, unsigned long long offset) {
    void* const data = or_null(mmap(nullptr, size, protection, kind, file, static_cast<off_t>(offset)));
    if (data != nullptr && !watch_mapping(data, size, file, offset + size)) {
        munmap(data, size);
        return nullptr;
    }
    return data;
}

void* map_anonymous(size_t size) {
    if (size == 0) {
        return &no_bytes;
    }
    return or_null(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
}

}  // namespace

const int32_t alloc_mmap_unix::kind_private = MAP_PRIVATE | MAP_ANONYMOUS;

void* alloc_mmap_unix::allocate(size_t& size, const char* path, e_prot_t prot, unsigned long long offset,
                                android_app* /*app*/) {
    if (prot != PROT_READ_ONLY && prot != PROT_READ_WRITE) {
        return nullptr;
    }
    const bool writable = prot == PROT_READ_WRITE || path == nullptr;
    open_mode_ = prot == PROT_READ_WRITE ? O_RDWR : O_RDONLY;
    protection_ = writable ? PROT_READ | PROT_WRITE : PROT_READ;
    kind_ = path == nullptr ? kind_private : MAP_SHARED;

    void* data = path == nullptr ? map_anonymous(size) : map_file(size, path, offset);
    length_ = data == nullptr ? 0 : size;
    return data;
}

void* alloc_mmap_unix::map_file(size_t& size, const char* path, unsigned long long offset) {
    // O_NONBLOCK: a pipe on the card must not hold the program before it is found to be no regular file.
    const int file = open(path, open_mode_ | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) {
        return nullptr;
    }
    void* data = nullptr;
    bool is_mapped = false;  // the descriptor went to the mapping
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
        offset <= static_cast<unsigned long long>(status.st_size)) {
        const size_t rest = static_cast<size_t>(status.st_size) - static_cast<size_t>(offset);
        if (size == 0) {
            size = rest;
        }
        if (size == 0) {
            data = &no_bytes;
        } else if (size <= rest) {
            data = map_watched(size, protection_, kind_, file, offset);
            is_mapped = data != nullptr;
        }
    }
    if (!is_mapped) {
        close(file);
    }
    return data;
}

void* alloc_mmap_unix::reallocate(void* old, size_t size, unsigned long long /*offset*/) {
    void* data = nullptr;
    if (length_ != 0 && size != 0 && (is_private() || size <= length_)) {
        data = or_null(mremap(old, length_, size, MREMAP_MAYMOVE));
        if (data == nullptr) {
            return nullptr;
        }
        move_mapping(old, data, size);
    } else {
        data = map_anonymous(size);
        if (data == nullptr) {
            return nullptr;
        }
        if (const size_t kept = std::min<size_t>(length_, size); kept != 0) {
            std::memcpy(data, old, kept);
        }
        deallocate(old);
        kind_ = kind_private;
        protection_ = PROT_READ | PROT_WRITE;
    }
    length_ = size;
    return data;
}

bool alloc_mmap_unix::is_intact(const void* data) const {
    return is_private() || length_ == 0 || is_mapping_intact(data);
}

void alloc_mmap_unix::deallocate(void* data) {
    if (data != nullptr && length_ != 0) {
        forget_mapping(data);
        munmap(data, length_);
    }
    length_ = 0;
}

}  // namespace libutils
