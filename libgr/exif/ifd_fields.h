#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "libgr/exif/exif_type.h"
#include "libgr/exif/ifd_walk.h"
#include "libutils/bytes/byte_reader.h"

namespace libgr {

// Which tag goes into which field of a record: the records' readers are tables of these.
template <typename Record>
struct ifd_field_t {
    uint16_t tag;
    std::variant<std::string Record::*, ExifType::shorts_t Record::*, ExifType::longs_t Record::*,
                 ExifType::rationals_t Record::*, ExifType::srationals_t Record::*, libutils::bytes_t Record::*>
        member;
    size_t size = 0;  // bytes that the value must have; 0: any number
};

// Puts an entry's value into a field. Numbers are appended, cut out of the value in the width of the field whatever
// the entry's type says; a text is replaced.
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, std::string& field);
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::shorts_t& field);
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::longs_t& field);
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::rationals_t& field);
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, ExifType::srationals_t& field);
void store_value(const libutils::bytes_t& value, const libutils::byteorder& order, libutils::bytes_t& field);

// Stores one entry in the field that the table has for its tag; other tags are ignored.
template <typename Record, size_t N>
void store_entry(const ifd_entry_t& entry, const libutils::byteorder& order, const ifd_field_t<Record> (&fields)[N],
                 Record& record) {
    for (const ifd_field_t<Record>& field : fields) {
        if (field.tag == entry.tag && (field.size == 0 || field.size == entry.value.size())) {
            std::visit([&](auto member) { store_value(entry.value, order, record.*member); }, field.member);
        }
    }
}

// Reads a whole directory into a record.
template <typename Record, size_t N>
[[nodiscard]] bool read_ifd(const ifd_source_t& source, const ifd_field_t<Record> (&fields)[N], Record& record) {
    return walk_ifd(source, [&](const ifd_entry_t& entry) { store_entry(entry, source.order, fields, record); });
}

}  // namespace libgr
