#include "libutils/bytes/byte_order.h"

#include <bit>

namespace libutils {

static_assert(std::endian::native == std::endian::little, "the byte-order objects assume a little-endian host");

unsigned short intel_byteorder::tohs(unsigned short value) const {
    return itohs(value);
}
unsigned int intel_byteorder::tohl(unsigned int value) const {
    return itohl(value);
}
unsigned long long intel_byteorder::tohll(unsigned long long value) const {
    return itohll(value);
}

unsigned short motorola_byteorder::tohs(unsigned short value) const {
    return __builtin_bswap16(value);
}
unsigned int motorola_byteorder::tohl(unsigned int value) const {
    return __builtin_bswap32(value);
}
unsigned long long motorola_byteorder::tohll(unsigned long long value) const {
    return mtohll(value);
}

unsigned short itohs(unsigned short value) {
    return value;
}
unsigned int itohl(unsigned int value) {
    return value;
}
unsigned long long itohll(unsigned long long value) {
    return value;
}
unsigned long long mtohll(unsigned long long value) {
    return __builtin_bswap64(value);
}

}  // namespace libutils
