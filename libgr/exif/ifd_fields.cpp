#include "libgr/exif/ifd_fields.h"

namespace libgr {

void store_value(const libutils::bytes_t& value, const libutils::byteorder& /*order*/, std::string& field) {
    field.assign(value.begin(), value.end());
}

void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::shorts_t& field) {
    const libutils::byte_reader bytes(value, order);
    for (uint64_t at = 0; const auto number = bytes.u16(at); at += 2) {
        field.push_back(*number);
    }
}

void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::longs_t& field) {
    const libutils::byte_reader bytes(value, order);
    for (uint64_t at = 0; const auto number = bytes.u32(at); at += 4) {
        field.push_back(*number);
    }
}

void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::rationals_t& field) {
    const libutils::byte_reader bytes(value, order);
    for (uint64_t at = 0; bytes.holds(at, 8); at += 8) {
        field.push_back({*bytes.u32(at), *bytes.u32(at + 4)});
    }
}

void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::srationals_t& field) {
    const libutils::byte_reader bytes(value, order);
    for (uint64_t at = 0; bytes.holds(at, 8); at += 8) {
        field.push_back({static_cast<int32_t>(*bytes.u32(at)), static_cast<int32_t>(*bytes.u32(at + 4))});
    }
}

void store_value(const libutils::bytes_t& value, const libutils::byteorder& /*order*/, libutils::bytes_t& field) {
    field = value;
}

}  // namespace libgr
