#pragma once

namespace libutils {

// Turns values as they stand in a file into the host's order.
class byteorder {
  public:
    [[nodiscard]] virtual unsigned short tohs(unsigned short value) const = 0;
    [[nodiscard]] virtual unsigned int tohl(unsigned int value) const = 0;
    [[nodiscard]] virtual unsigned long long tohll(unsigned long long value) const = 0;
    virtual ~byteorder() = default;
};

// Little-endian data (TIFF mark "II"): values unchanged.
class intel_byteorder final : public byteorder {
  public:
    [[nodiscard]] unsigned short tohs(unsigned short value) const override;
    [[nodiscard]] unsigned int tohl(unsigned int value) const override;
    [[nodiscard]] unsigned long long tohll(unsigned long long value) const override;
};

// Big-endian data (TIFF mark "MM" and all JPEG segments): bytes reversed.
class motorola_byteorder final : public byteorder {
  public:
    [[nodiscard]] unsigned short tohs(unsigned short value) const override;
    [[nodiscard]] unsigned int tohl(unsigned int value) const override;
    [[nodiscard]] unsigned long long tohll(unsigned long long value) const override;
};

[[nodiscard]] unsigned short itohs(unsigned short value);
[[nodiscard]] unsigned int itohl(unsigned int value);
[[nodiscard]] unsigned long long itohll(unsigned long long value);
[[nodiscard]] unsigned long long mtohll(unsigned long long value);

}  // namespace libutils
