#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

// The library's buffers are mappings, and those are whole pages: a parser that goes astray inside the last one would
// not be noticed. The linker's --wrap brings the program's calls here. Behind each mapping then lies a page that nobody
// may touch, and what is left of the last page is forbidden ground to the address sanitizer.
namespace {

const auto page = static_cast<size_t>(sysconf(_SC_PAGE_SIZE));

size_t whole_pages(size_t size) {
    return (size + page - 1) / page * page;
}

void* guard(void* mapped, size_t size) {
    if (mapped != MAP_FAILED) {
        auto* const bytes = static_cast<unsigned char*>(mapped);
        mprotect(bytes + whole_pages(size), page, PROT_NONE);
        ASAN_UNPOISON_MEMORY_REGION(bytes, size);
        ASAN_POISON_MEMORY_REGION(bytes + size, whole_pages(size) - size);
    }
    return mapped;
}

}  // namespace

extern "C" {

void* __real_mmap(void* address, size_t size, int protection, int flags, int file, off_t offset);
void* __real_mremap(void* old, size_t old_size, size_t size, int flags, ...);
int __real_munmap(void* mapped, size_t size);

void* __wrap_mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) {
    const bool guarded = address == nullptr && size != 0 && size < SIZE_MAX / 2;
    const size_t mapped_size = guarded ? whole_pages(size) + page : size;
    void* const mapped = __real_mmap(address, mapped_size, protection, flags, file, offset);
    return guarded ? guard(mapped, size) : mapped;
}

void* __wrap_mremap(void* old, size_t old_size, size_t size, int flags, ...) {
    // Pages of another protection do not move along.
    __real_munmap(static_cast<unsigned char*>(old) + whole_pages(old_size), page);
    ASAN_UNPOISON_MEMORY_REGION(old, whole_pages(old_size));
    return guard(__real_mremap(old, whole_pages(old_size), whole_pages(size) + page, flags), size);
}

int __wrap_munmap(void* mapped, size_t size) {
    ASAN_UNPOISON_MEMORY_REGION(mapped, whole_pages(size));
    return __real_munmap(mapped, whole_pages(size) + page);
}
}
