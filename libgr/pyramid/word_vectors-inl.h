// Vectors of 16-bit numbers, for code that is compiled once for every kind of vectors; included behind highway.h.
#if defined(LIBGR_WORD_VECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LIBGR_WORD_VECTORS_INL_H
#undef LIBGR_WORD_VECTORS_INL_H
#else
#define LIBGR_WORD_VECTORS_INL_H
#endif

#include <cstddef>
#include <cstdint>

#include <hwy/highway.h>

#if HWY_TARGET != HWY_SCALAR
HWY_BEFORE_NAMESPACE();
namespace libgr::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using words_tag_t = hn::ScalableTag<int16_t>;
using unsigned_words_tag_t = hn::RebindToUnsigned<words_tag_t>;
using longs_tag_t = hn::Repartition<int32_t, words_tag_t>;
using bytes_tag_t = hn::Repartition<uint8_t, words_tag_t>;
using half_tag_t = hn::Rebind<uint8_t, words_tag_t>;  // as many bytes as there are words
using words_t = hn::Vec<words_tag_t>;
using longs_t = hn::Vec<longs_tag_t>;
using bytes_t = hn::Vec<bytes_tag_t>;

constexpr words_tag_t words_tag;
constexpr unsigned_words_tag_t unsigned_words_tag;
constexpr longs_tag_t longs_tag;

HWY_INLINE words_t word(int value) {
    return hn::Set(words_tag, static_cast<int16_t>(value));
}

HWY_INLINE words_t load_bytes(const unsigned char* from) {
    return hn::PromoteTo(words_tag, hn::LoadU(half_tag_t(), from));
}

// What is below 0 or over 255 becomes that.
HWY_INLINE void store_bytes(words_t values, unsigned char* to) {
    hn::StoreU(hn::DemoteTo(half_tag_t(), values), half_tag_t(), to);
}

// The sums of two neighbours each, times factors of 16 bits.
HWY_INLINE longs_t sum_of_products(words_t pairs, int even_factor, int odd_factor) {
    const auto factors =
        hn::BitCast(words_tag, hn::Set(longs_tag, static_cast<int32_t>((static_cast<uint32_t>(odd_factor) << 16) |
                                                                       (static_cast<uint32_t>(even_factor) & 0xFFFF))));
    longs_t rest = hn::Zero(longs_tag);
    const longs_t sum = hn::ReorderWidenMulAccumulate(longs_tag, pairs, factors, hn::Zero(longs_tag), rest);
    return hn::RearrangeToOddPlusEven(sum, rest);
}

}  // namespace
}  // namespace libgr::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
#endif
