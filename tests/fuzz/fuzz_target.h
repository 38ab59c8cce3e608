#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include "libutils/bytes/ofsvector.h"

// The one function of a target. libFuzzer calls it with inputs of its own making, replay.cpp with saved ones. Whatever
// goes wrong ends the program.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz {

// Takes in what the code under test says. It still makes every message.
class silence_t : public std::streambuf {
  public:
    silence_t() : out_(std::cout.rdbuf(this)), errors_(std::cerr.rdbuf(this)) {}
    ~silence_t() override {
        std::cout.rdbuf(out_);
        std::cerr.rdbuf(errors_);
    }

  protected:
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char* /*text*/, std::streamsize size) override { return size; }

  private:
    std::streambuf* out_;
    std::streambuf* errors_;
};

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// An input as the library's buffers hold it.
inline libutils::bytes_t view_of(const uint8_t* data, size_t size) {
    libutils::bytes_t view;
    require(view.resize(size));
    std::copy_n(data, size, view.begin());
    return view;
}

}  // namespace fuzz
