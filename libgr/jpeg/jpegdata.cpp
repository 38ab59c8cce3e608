#include "libgr/jpeg/jpegdata.h"

#include <sys/stat.h>

#include <fstream>

#include "libutils/files/new_file.h"
#include "libutils/files/read_file.h"

namespace libgr {

namespace {

std::error_code write_bytes(const libutils::bytes_t& bytes, const std::string& path) {
    libutils::new_file_t file(path, libutils::staging_t::above);
    file.open();
    const std::error_code failure = file.write({reinterpret_cast<const char*>(bytes.begin()), bytes.size()});
    if (failure) {
        return failure;
    }
    file.begin_flush();
    return bytes.is_intact() ? file.commit() : make_error_code(std::errc::io_error);
}

}  // namespace

void jpegbuffer_t::setvector(const libutils::bytes_t& v, const char* new_name) {
    libutils::bytes_t::operator=(v);
    name = new_name;
}

bool jpegdata_t::load(const char* path, android_app* /*app*/) {
    if (libutils::map_file(*this, path)) {
        return false;
    }
    name = path;
    return true;
}

bool jpegdata_t::save(const char* path, android_app* /*app*/) {
    if (write_bytes(*this, path)) {
        return false;
    }
    name = path;
    return true;
}

std::error_code load_file(jpegdata_t& data, const std::string& path) {
    const std::error_code failure = libutils::map_file(data, path);
    data.name = failure ? data.name : path.c_str();
    return failure;
}

std::error_code save_file(jpegdata_t& data, const std::string& path) {
    const std::error_code failure = write_bytes(data, path);
    data.name = failure ? data.name : path.c_str();
    return failure;
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
