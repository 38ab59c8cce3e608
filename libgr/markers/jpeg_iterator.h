#pragma once

namespace libgr {

// Walks entropy-coded bytes up to `end`: a zero that is stuffed after 0xFF (ITU-T T.81 F.1.2.3) is stepped over.
class jpeg_iterator {
  public:
    jpeg_iterator(const unsigned char* position, const unsigned char* end) : position_(position), end_(end) {}

    // The current byte's position; the iterator moves on to the next byte, never past `end`.
    const unsigned char* operator++(int) {
        const unsigned char* current = position_;
        if (position_ < end_) {
            ++position_;
            if (*current == 0xFF && position_ < end_ && *position_ == 0) {
                ++position_;
            }
        }
        return current;
    }

    [[nodiscard]] friend bool operator<(const jpeg_iterator& iterator, const unsigned char* position) {
        return iterator.position_ < position;
    }

  private:
    const unsigned char* position_;
    const unsigned char* end_;
};

}  // namespace libgr
