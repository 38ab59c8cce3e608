#include <gtest/gtest.h>
#include <sys/sysinfo.h>

#include "libutils/bytes/alloc_new.h"
#include "libutils/bytes/byte_reader.h"
#include "libutils/bytes/ofsvector.h"
#include "libutils/bytes/refvector.h"
#include "libutils/process/memory.h"
#include "tests/support/fixtures.h"
#include "tests/support/photo_maker.h"

using libutils::bytes_t;

namespace {

bytes_t counting_bytes(size_t size) {
    bytes_t bytes;
    EXPECT_TRUE(bytes.resize(size));
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<unsigned char>(i);
    }
    return bytes;
}

TEST(ByteVectors, ViewsAreCutToTheBuffer) {
    struct case_t {
        const char* name;
        uint64_t offset, limit;
        size_t size;
    };
    constexpr case_t cases[] = {
        {"all", 0, bytes_t::no_limit, 100},
        {"to the end", 10, bytes_t::no_limit, 90},
        {"inside", 10, 5, 5},
        {"past the end", 90, 50, 10},
        {"at the end", 100, 5, 0},
        {"past the end", 500, 5, 0},
        {"limit of nothing", 10, 0, 0},
    };
    bytes_t view = counting_bytes(100);
    for (const case_t& c : cases) {
        SCOPED_TRACE(c.name);
        view.offset = c.offset;
        view.limit = c.limit;
        EXPECT_EQ(view.size(), c.size);
        EXPECT_EQ(view.empty(), c.size == 0);
        EXPECT_EQ(static_cast<size_t>(view.end() - view.begin()), c.size);
        if (c.size != 0) {
            EXPECT_EQ(view[0], c.offset);
        }
    }
    view.offset = 20;
    view.limit = 30;
    const bytes_t part = view.subview(25, 50);
    EXPECT_EQ(part.size(), 5U);
    EXPECT_EQ(part[0], 45);
}

TEST(ByteVectors, ResizingAViewLeavesTheSharedBufferAlone) {
    bytes_t whole = counting_bytes(10);
    bytes_t view = whole.subview(4, 3);
    ASSERT_TRUE(view.resize(5));
    view[0] = 99;
    EXPECT_EQ(whole[4], 4);
    EXPECT_EQ(view.size(), 5U);
    EXPECT_EQ(view[2], 6);
    EXPECT_EQ(view[3], 0) << "what lies past the view does not come along";
    ASSERT_TRUE(whole.resize(1 << 20));
    EXPECT_EQ(whole[9], 9);
    EXPECT_FALSE(whole.resize(size_t{1} << 60));
    EXPECT_EQ(whole[9], 9);
}

TEST(ByteVectors, FilesLoad) {
    const test_support::temp_dir_t dir;
    test_support::write_file(dir / "ten", std::string("0123456789"));
    test_support::write_file(dir / "empty", std::string());
    struct case_t {
        const char* name;
        size_t size;
        unsigned long long offset;
        bool loads;
        size_t loaded;
    };
    constexpr case_t cases[] = {
        {"ten", 0, 0, true, 10},  {"ten", 4, 0, true, 4},    {"ten", 11, 0, false, 0},    {"ten", 0, 4096, false, 0},
        {"empty", 0, 0, true, 0}, {"empty", 1, 0, false, 0}, {"missing", 0, 0, false, 0}, {".", 0, 0, false, 0},
    };
    for (const case_t& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << " " << c.size << " from " << c.offset);
        bytes_t bytes = counting_bytes(3);
        EXPECT_EQ(bytes.load(c.size, (dir / c.name).c_str(), libutils::PROT_READ_ONLY, c.offset, false, nullptr),
                  c.loads);
        EXPECT_EQ(bytes.is_allocated(), c.loads);
        EXPECT_EQ(bytes.size(), c.loaded);
    }
    bytes_t file;
    ASSERT_TRUE(file.load(0, (dir / "ten").c_str(), libutils::PROT_READ_ONLY, 0, false, nullptr));
    const bytes_t view = file.subview(8);
    ASSERT_TRUE(file.resize(20)) << "a read-only mapping grows into a copy";
    file[0] = 'x';
    file.clear();
    EXPECT_EQ(view[0], '8') << "a view keeps the mapping alive";
    EXPECT_EQ(test_support::read_file(dir / "ten")[0], '0');
}

TEST(ByteVectors, HeapVectorsShareUntilResized) {
    libutils::refvector<unsigned short, libutils::alloc_new> a;
    ASSERT_TRUE(a.resize(3));
    a[2] = 7;
    auto b = a;
    b[2] = 8;
    EXPECT_EQ(a[2], 8);
    ASSERT_TRUE(b.resize(5));
    b[2] = 9;
    EXPECT_EQ(a[2], 8);
    b = a;
    EXPECT_EQ(b.size(), 3U);
}

TEST(Memory, WhatIsLeftIsLessThanTheMachineHas) {
    const test_support::grouping_locale_t grouping;
    struct sysinfo machine {};
    ASSERT_EQ(sysinfo(&machine), 0);
    EXPECT_GT(libutils::available_memory(), uint64_t{1} << 20);
    EXPECT_LT(libutils::available_memory(), (uint64_t{machine.totalram} + machine.totalswap) * machine.mem_unit);
}

TEST(ByteReader, ReadsOnlyWhatLiesInside) {
    const bytes_t bytes = counting_bytes(8);
    const libutils::motorola_byteorder motorola;
    const libutils::intel_byteorder intel;
    const libutils::byte_reader big(bytes, motorola);
    EXPECT_EQ(big.u32(0), 0x00010203U);
    EXPECT_EQ(libutils::byte_reader(bytes, intel).u32(4), 0x07060504U);
    EXPECT_EQ(big.u16(6), 0x0607);
    EXPECT_EQ(big.u16(7), std::nullopt);
    EXPECT_EQ(big.u8(8), std::nullopt);
    EXPECT_FALSE(big.holds(1, ~uint64_t{0})) << "the sum would wrap";
    EXPECT_EQ(big.bytes(6, 100).size(), 2U);
    EXPECT_EQ(motorola.tohll(0x0102030405060708ULL), 0x0807060504030201ULL);
}

}  // namespace
