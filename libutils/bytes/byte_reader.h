#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "libutils/bytes/byte_order.h"
#include "libutils/bytes/ofsvector.h"

namespace libutils {

// The one way in which parsers read a file's bytes: every read names its offset and answers nothing when the bytes do
// not lie inside whole. Neither the bytes nor the byte order object are owned.
class byte_reader {
  public:
    byte_reader(const bytes_t& view, const byteorder& order) : bytes_(view.begin(), view.size()), order_(&order) {}
    byte_reader(std::span<const unsigned char> bytes, const byteorder& order) : bytes_(bytes), order_(&order) {}

    [[nodiscard]] uint64_t size() const { return bytes_.size(); }

    // True when `count` bytes from `offset` lie inside. Never adds before it compares.
    [[nodiscard]] bool holds(uint64_t offset, uint64_t count) const {
        return offset <= bytes_.size() && count <= bytes_.size() - offset;
    }

    [[nodiscard]] std::optional<uint8_t> u8(uint64_t offset) const {
        return holds(offset, 1) ? std::optional(bytes_[offset]) : std::nullopt;
    }
    [[nodiscard]] std::optional<uint16_t> u16(uint64_t offset) const {
        const auto raw = read<uint16_t>(offset);
        return raw ? std::optional(order_->tohs(*raw)) : std::nullopt;
    }
    [[nodiscard]] std::optional<uint32_t> u32(uint64_t offset) const {
        const auto raw = read<uint32_t>(offset);
        return raw ? std::optional(order_->tohl(*raw)) : std::nullopt;
    }

    // `count` bytes from `offset`, both cut to what there is.
    [[nodiscard]] std::span<const unsigned char> bytes(uint64_t offset, uint64_t count) const {
        const uint64_t begin = std::min<uint64_t>(offset, bytes_.size());
        return bytes_.subspan(begin, std::min<uint64_t>(count, bytes_.size() - begin));
    }

    [[nodiscard]] const byteorder& order() const { return *order_; }

  private:
    template <typename T>
    [[nodiscard]] std::optional<T> read(uint64_t offset) const {
        if (!holds(offset, sizeof(T))) {
            return std::nullopt;
        }
        T raw;
        std::memcpy(&raw, bytes_.data() + offset, sizeof(T));
        return raw;
    }

    std::span<const unsigned char> bytes_;
    const byteorder* order_;
};

}  // namespace libutils
