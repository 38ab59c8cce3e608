#include "libgr/jpeg/jpegdata.h"

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <string_view>

#include "libutils/files/new_file.h"

namespace libgr {

void jpegbuffer_t::setvector(const libutils::bytes_t& v, const char* new_name) {
    libutils::bytes_t::operator=(v);
    name = new_name;
}

bool jpegdata_t::load(const char* path, android_app* app) {
    if (!load(0, path, libutils::PROT_READ_ONLY, 0, false, app)) {
        return false;
    }
    name = path;
    return true;
}

bool jpegdata_t::save(const char* path, android_app* /*app*/) {
    libutils::new_file_t file(path, libutils::staging_t::above);
    const std::string_view bytes(reinterpret_cast<const char*>(begin()), size());
    file.open();
    std::error_code failure = file.write(bytes);
    if (!failure) {
        failure = is_intact() ? file.commit() : make_error_code(std::errc::io_error);
    }
    if (failure) {
        errno = failure.category() == std::generic_category() ? failure.value() : EINVAL;
        return false;
    }
    name = path;
    return true;
}

bool jpegdata2_t::load(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0 ||
        !load(static_cast<size_t>(status.st_size), path, libutils::PROT_READ_ONLY, 0, false, nullptr)) {
        return false;
    }
    name = path;
    return true;
}

bool jpegdata2_t::save(const char* path) {
    // Truncating the file takes the bytes away from a view that is mapped from it.
    jpegdata2_t own(*this);
    if (own.is_allocated() && !own.resize(own.size())) {
        return false;
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!own.empty()) {
        out.write(reinterpret_cast<const char*>(own.begin()), static_cast<std::streamsize>(own.size()));
    }
    // A full disk may show only now.
    out.close();
    if (out.fail()) {
        return false;
    }
    name = path;
    return true;
}

}  // namespace libgr
