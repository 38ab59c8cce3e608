#pragma once

#include <string>
#include <system_error>

#include "libutils/bytes/ofsvector.h"

namespace libgr {

// The bytes of a JPEG file and the path that diagnostics about them name.
class jpegbuffer_t : public libutils::bytes_t {
  public:
    const char* name = nullptr;  // not owned: the caller's string outlives the object; null before a load or save

    // Shares the buffer of `v` with its offset and limit, under a name.
    void setvector(const libutils::bytes_t& v, const char* new_name);
};

// A whole JPEG file as the libjpeg bridge reads and writes it.
class jpegdata_t : public jpegbuffer_t {
  public:
    using libutils::bytes_t::load;

    // Maps the whole file read-only. No message.
    [[nodiscard]] bool load(const char* path, android_app* app = nullptr);

    // Replaces `path` by a new file, so that another name of the old one keeps its contents. True when the file is
    // there with every byte; the old one stays otherwise. No message.
    [[nodiscard]] bool save(const char* path, android_app* app = nullptr);
};

// The same two with the reason. `path` outlives `data`, whose name it becomes.
[[nodiscard]] std::error_code load_file(jpegdata_t& data, const std::string& path);
[[nodiscard]] std::error_code save_file(jpegdata_t& data, const std::string& path);

// A whole JPEG file as the file information reader takes it.
class jpegdata2_t : public jpegbuffer_t {
  public:
    using libutils::bytes_t::load;

    // Maps exactly the bytes of the size that the file has now, read-only. No message.
    [[nodiscard]] bool load(const char* path);

    // Rewrites an existing file in place, through all its names. No message.
    [[nodiscard]] bool save(const char* path);
};

}  // namespace libgr
