#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "libgr/jpeg/jpegdata.h"
#include "tests/support/photo_maker.h"

namespace test_support {

// A JPEG file in a buffer of the library's own, under the name "P".
inline libgr::jpegdata_t in_memory(const blob_t& bytes) {
    libgr::jpegdata_t data;
    EXPECT_TRUE(data.resize(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), data.begin());
    data.name = "P";
    return data;
}

inline blob_t bytes_of(const libutils::bytes_t& view) {
    return {view.begin(), view.end()};
}

}  // namespace test_support
