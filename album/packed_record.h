#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Records as bytes, between two processes of one program. A record is packed by what visit_fields(visitor, record)
// shows of it; numbers and enumerators as they lie in memory.
namespace taloram {

template <typename T>
concept plain_t = std::is_arithmetic_v<T> || std::is_enum_v<T>;

class packer_t {
  public:
    template <typename... Fields>
    void operator()(Fields&... fields) {
        (pack(fields), ...);
    }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    template <plain_t T>
    void pack(T& value) {
        bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
    void pack(std::string& text) {
        size_t size = text.size();
        pack(size);
        bytes_ += text;
    }
    template <typename T>
    void pack(std::optional<T>& value) {
        bool is_there = value.has_value();
        pack(is_there);
        if (is_there) {
            pack(*value);
        }
    }
    template <typename T>
    void pack(std::vector<T>& values) {
        size_t count = values.size();
        pack(count);
        for (T& value : values) {
            pack(value);
        }
    }
    template <typename T>
    void pack(T& record) {
        visit_fields(*this, record);
    }

    std::string bytes_;
};

// Reads what a packer wrote of the same types.
class unpacker_t {
  public:
    explicit unpacker_t(std::string_view bytes) : rest_(bytes) {}

    template <typename... Fields>
    void operator()(Fields&... fields) {
        (unpack(fields), ...);
    }

  private:
    std::string_view take(size_t size) {
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    template <plain_t T>
    void unpack(T& value) {
        const std::string_view bytes = take(sizeof value);
        std::memcpy(&value, bytes.data(), bytes.size());
    }
    size_t unpack_count() {
        size_t count = 0;
        unpack(count);
        return count;
    }
    void unpack(std::string& text) { text = take(unpack_count()); }
    template <typename T>
    void unpack(std::optional<T>& value) {
        bool is_there = false;
        unpack(is_there);
        value.reset();
        if (is_there) {
            unpack(value.emplace());
        }
    }
    template <typename T>
    void unpack(std::vector<T>& values) {
        values.clear();
        for (size_t count = unpack_count(); count != 0 && !rest_.empty(); --count) {
            unpack(values.emplace_back());
        }
    }
    template <typename T>
    void unpack(T& record) {
        visit_fields(*this, record);
    }

    std::string_view rest_;
};

template <typename... Fields>
[[nodiscard]] std::string packed(Fields... fields) {
    packer_t packer;
    packer(fields...);
    return packer.bytes();
}

}  // namespace taloram
