#pragma once

#include <climits>
#include <cstddef>

namespace libgr {

// What codes of a tag mean, in a table that an entry with the largest number ends.
struct desc_t {
    unsigned long code;
    const char* text;
};

// The text of the first entry with `code`, else that of the entry that ends the table.
[[nodiscard]] constexpr const char* search_desc(const desc_t* table, unsigned long code) {
    while (table->code != code && table->code != ULONG_MAX) {
        ++table;
    }
    return table->text;
}

// The label at a place of an array, `other` past its end.
template <typename Labels>
[[nodiscard]] constexpr const char* label_of(const Labels& labels, size_t value, const char* other) {
    return value < labels.size() ? labels[value] : other;
}

}  // namespace libgr
