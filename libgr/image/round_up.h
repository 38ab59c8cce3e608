#pragma once

#include <type_traits>

namespace libgr {

// The smallest multiple of `unit` that holds `count`.
template <typename T>
[[nodiscard]] constexpr T round_up(T count, std::type_identity_t<T> unit) {
    return (count + unit - 1) / unit * unit;
}

}  // namespace libgr
