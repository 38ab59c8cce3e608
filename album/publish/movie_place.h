#pragma once

#include <span>

namespace taloram {

// True when the metadata of a QuickTime or MP4 movie name a place: user data of type 0xA9 "xyz" or "loci", or a key
// that begins with "com.apple.quicktime.location". Nothing outside `movie` is read; a box that is broken ends the walk
// of the boxes beside it, so that any bytes will do. (ISO/IEC 14496-12, 4.2; QuickTime File Format, "Metadata"; 3GPP TS
// 26.244, 8.10.)
[[nodiscard]] bool names_a_place(std::span<const unsigned char> movie);

}  // namespace taloram
