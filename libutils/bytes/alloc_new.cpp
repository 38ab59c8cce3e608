#include "libutils/bytes/alloc_new.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <new>

namespace libutils {

void* alloc_new::allocate(size_t& size, const char* path, e_prot_t /*prot*/, unsigned long long /*offset*/,
                          android_app* /*app*/) {
    if (path != nullptr && size == 0) {
        struct stat status {};
        if (stat(path, &status) != 0 || status.st_size < 0) {
            return nullptr;
        }
        size = static_cast<size_t>(status.st_size);
    }
    auto* data = new (std::nothrow) char[size];
    if (data == nullptr) {
        return nullptr;
    }
    length_ = size;
    if (path != nullptr) {
        std::ifstream(path, std::ios::binary).read(data, static_cast<std::streamsize>(size));
    }
    return data;
}

void* alloc_new::reallocate(void* old, size_t size, unsigned long long /*offset*/) {
    auto* data = new (std::nothrow) char[size];
    if (data == nullptr) {
        return nullptr;
    }
    if (const size_t kept = std::min(length_, size); kept != 0) {
        std::memcpy(data, old, kept);
    }
    deallocate(old);
    length_ = size;
    return data;
}

void alloc_new::deallocate(void* data) {
    delete[] static_cast<char*>(data);
    length_ = 0;
}

}  // namespace libutils
